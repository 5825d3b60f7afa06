// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/Script.h"
#include "examples/shop/ScriptSource.h"
#include "examples/shop/Shop.h"
#include "examples/shop/ShopOptions.h"
#include "orlixkit/posix/PosixPorts.h"
#include "sandbox/Sandbox.h"
#include "tests/TemporaryFolder.h"

namespace orlix::shop {

/// A wallet server, and the last code that it sent by SMS.
class Server {
 public:
  explicit Server(bool enrolled) : sandbox_(options(enrolled)) { sandbox_.start(); }
  sandbox::Sandbox& sandbox() { return sandbox_; }
  std::string lastSms() {
    const std::lock_guard lock(mutex_);
    return lastSms_;
  }

 private:
  sandbox::Options options(bool enrolled) {
    sandbox::Options made;
    made.enrolled = enrolled;
    made.onEvent = [this](std::string_view line) {
      const boost::json::value event = boost::json::parse({line.data(), line.size()});
      if (event.at("event") == "sms") {
        const std::lock_guard lock(mutex_);
        lastSms_ = event.at("code").as_string();
      }
    };
    return made;
  }

  std::mutex mutex_;
  std::string lastSms_;
  sandbox::Sandbox sandbox_;
};

/// A script whose "$SMS" is filled in when its line is due.
class Story : public ScriptSource {
 public:
  Story(std::istream& text, Server& server) : script_(text), server_(server) {}
  std::optional<ScriptLine> next() override {
    std::optional<ScriptLine> line = script_.next();
    if (auto* type = line ? std::get_if<TypeText>(&line->action) : nullptr) {
      type->text = type->text == "$SMS" ? server_.lastSms() : type->text;
    }
    return line;
  }
  bool mayBlock() const override { return false; }

 private:
  WholeScript script_;
  Server& server_;
};

inline std::vector<std::filesystem::path> stories(const std::string& folder) {
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(
           std::filesystem::path(ORLIX_SOURCE_DIR) / "examples/shop/scripts" / folder)) {
    found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

/// Arguments of the application that runs the story.
inline ShopOptions optionsOf(const std::filesystem::path& story, Server& server,
                             const std::filesystem::path& state) {
  return {.server = server.sandbox().base(),
          .anchor = server.sandbox().anchorPath(),
          .state = state,
          .location = {{-33.92, 18.42}},
          .terms = server.sandbox().terms(),
          .script = story,
          .snapshots = state / "pictures"};
}

/// An application that runs the script and writes its lines and how far it is.
using Face = std::function<void(const ShopOptions&, ScriptSource&, std::ostream&, std::ostream&)>;

inline void headless(const ShopOptions& options, ScriptSource& script, std::ostream& lines,
                     std::ostream& progress) {
  HeadlessDriver driver;
  Shop(options,
       makePosixPorts({.applicationName = "orlix-shop",
                       .stateDirectory = options.state,
                       .anchorFile = options.anchor,
                       .resourceDirectories = {},
                       .logTarget = LogTarget::stderrOnly,
                       .location = options.location}),
       lines, progress)
      .run(script, driver);
}

struct Told {
  std::string lines;
  std::string wrong = {};  ///< empty when the story ended as it says
};

/// Tells the story in an application of its own.
inline Told tell(const std::filesystem::path& story, Server& server,
                 const std::filesystem::path& state, const Face& face) {
  std::ifstream text(story);
  Story script(text, server);
  std::ostringstream lines;
  std::ostringstream progress;
  try {
    face(optionsOf(story, server, state), script, lines, progress);
    return {lines.str()};
  } catch (const std::exception& error) {
    return {lines.str(), error.what() + ("\n" + lines.str()) + progress.str()};
  }
}

inline std::string nameOfStory(const testing::TestParamInfo<std::filesystem::path>& story) {
  std::string name = story.param.stem().string();
  std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
  return name;
}

}  // namespace orlix::shop
