#pragma once

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <boost/json.hpp>

#include "examples/shop/Script.h"
#include "examples/shop/ScriptSource.h"
#include "examples/shop/ShopOptions.h"
#include "sandbox/Sandbox.h"

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

/// What an application that tells the story is started with.
inline ShopOptions optionsOf(const std::filesystem::path& story, Server& server,
                             const std::filesystem::path& state) {
  return {.server = server.sandbox().base(),
          .anchor = server.sandbox().anchorPath(),
          .state = state,
          .location = {{-33.92, 18.42}},
          .terms = server.sandbox().terms(),
          .script = story,
          .snapshots = {}};
}

}  // namespace orlix::shop
