#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/Shop.h"
#include "orlixkit/platform/posix/PosixPorts.h"
#include "orlixkit/resources/CompiledBundle.h"
#include "tests/TemporaryFolder.h"
#include "tests/shop/Story.h"

namespace orlix::shop {
namespace {

using orlix::test::TemporaryFolder;

/// Runs the story in an application of its own. What went wrong, empty when nothing did.
std::string tell(const std::filesystem::path& story, Server& server,
                 const std::filesystem::path& state) {
  const ShopOptions options = optionsOf(story, server, state);
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
