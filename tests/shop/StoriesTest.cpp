// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "tests/shop/Story.h"

namespace orlix::shop {
namespace {

using orlix::test::TemporaryFolder;

class WalletStory : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(WalletStory, EndsAsItSays) {
  const TemporaryFolder folder;
  Server server(true);
  EXPECT_EQ(tell(GetParam(), server, folder.path() / "state", headless).wrong, "");
}

INSTANTIATE_TEST_SUITE_P(OverTls, WalletStory, testing::ValuesIn(stories("wallet")), nameOfStory);

TEST(NewDeviceStories, EndAsTheySayOneAfterTheOther) {
  const TemporaryFolder folder;
  Server server(false);
  for (const std::filesystem::path& story : stories("new-device")) {
    ASSERT_EQ(tell(story, server, folder.path() / "state", headless).wrong, "") << story;
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
