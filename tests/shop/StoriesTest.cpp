#include <algorithm>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>

#include <boost/json.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/Shop.h"
#include "orlixkit/platform/posix/PosixPorts.h"
#include "orlixkit/resources/CompiledBundle.h"
#include "sandbox/Sandbox.h"
#include "tests/TemporaryFolder.h"

namespace orlix::shop {
namespace {

using orlix::test::TemporaryFolder;

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

std::vector<std::filesystem::path> stories(const std::string& folder) {
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(
           std::filesystem::path(ORLIX_SOURCE_DIR) / "examples/shop/scripts" / folder)) {
    found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

/// Runs the story in an application of its own. What went wrong, empty when nothing did.
std::string tell(const std::filesystem::path& story, Server& server,
                 const std::filesystem::path& state) {
  const ShopOptions options{.server = server.sandbox().base(),
                            .anchor = server.sandbox().anchorPath(),
                            .state = state,
                            .location = {{-33.92, 18.42}},
                            .terms = server.sandbox().terms(),
                            .script = story,
                            .snapshots = {}};
  std::ostringstream out;
  std::ostringstream progress;
  try {
    std::ifstream text(story);
    Story script(text, server);
    HeadlessDriver driver;
    Shop(options,
         makePosixPorts({.applicationName = "orlix-shop-test",
                         .stateDirectory = options.state,
                         .anchorFile = options.anchor,
                         .resourceDirectories = {},
                         .bundles = {std::make_shared<CompiledBundle>()},
                         .logTarget = LogTarget::stderrOnly,
                         .location = options.location}),
         out, progress)
        .run(script, driver);
    return "";
  } catch (const std::exception& error) {
    return error.what() + ("\n" + out.str()) + progress.str();
  }
}

class WalletStory : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(WalletStory, EndsAsItSays) {
  const TemporaryFolder folder;
  Server server(true);
  EXPECT_EQ(tell(GetParam(), server, folder.path() / "state"), "");
}

INSTANTIATE_TEST_SUITE_P(OverTls, WalletStory, testing::ValuesIn(stories("wallet")),
                         [](const auto& story) {
                           std::string name = story.param.stem().string();
                           std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
                           return name;
                         });

TEST(NewDeviceStories, EndAsTheySayOneAfterTheOther) {
  const TemporaryFolder folder;
  Server server(false);
  for (const std::filesystem::path& story : stories("new-device")) {
    ASSERT_EQ(tell(story, server, folder.path() / "state"), "") << story;
  }
}

TEST(ShopProgram, EndsWithAStatusThatTellsWhatWentWrong) {
  const TemporaryFolder folder;
  Server server(true);
  const auto run = [&](const std::string& script, const std::string& anchor) {
    const std::filesystem::path file = folder.path() / "script";
    std::ofstream(file) << script;
    std::ostringstream out;
    std::ostringstream err;
    const int status = runShop({"--headless", "--server", server.sandbox().base(), "--anchor",
                                anchor, "--state", folder.path() / "state", "--script", file},
                               out, err);
    return std::to_string(status) + " " + err.str();
  };
  const std::string anchor = server.sandbox().anchorPath();
  std::ofstream(folder.path() / "no-certificate") << "hello";
  EXPECT_THAT(run("wait idle", anchor), testing::StartsWith("0 "));
  EXPECT_THAT(run("wait idle\nwait nothing", anchor), testing::StartsWith("1 orlix-shop: line 2:"));
  EXPECT_THAT(run("# nothing\ntap button", anchor),
              testing::HasSubstr("orlix-shop: line 2: no screen of the wallet is shown"));
  EXPECT_THAT(run("wait idle", folder.path() / "no-certificate"), testing::StartsWith("2 "));
  EXPECT_THAT(run("wait idle", folder.path() / "no-such-file"), testing::StartsWith("2 "));
}

}  // namespace
}  // namespace orlix::shop
