// Every story of the shop, told by real touches and keys on the drawn screens: it ends as it says,
// in the same lines as without a window.

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/Shop.h"
#include "examples/shop/window/DrawnShop.h"
#include "orlixkit/platform/posix/PosixPorts.h"
#include "orlixkit/resources/CompiledBundle.h"
#include "tests/TemporaryFolder.h"
#include "tests/shop/Story.h"

namespace orlix::shop {
namespace {

enum class Face { headless, drawn };

/// Tells the story to its end. The event lines, and what went wrong if something did.
std::string tell(const std::filesystem::path& story, Server& server,
                 const std::filesystem::path& state, Face face) {
  const ShopOptions options = optionsOf(story, server, state);
  std::ifstream text(story);
  Story script(text, server);
  std::ostringstream out;
  std::ostringstream progress;
  try {
    if (face == Face::drawn) {
      DrawnShop(options, out, progress).run(script);
    } else {
      HeadlessDriver driver;
      Shop(options,
           makePosixPorts({.applicationName = "orlix-shop",
                           .stateDirectory = options.state,
                           .anchorFile = options.anchor,
                           .resourceDirectories = {},
                           .bundles = {std::make_shared<CompiledBundle>()},
                           .logTarget = LogTarget::stderrOnly,
                           .location = options.location}),
           out, progress)
          .run(script, driver);
    }
  } catch (const std::exception& error) {
    return out.str() + error.what();
  }
  return out.str();
}

/// Without the lines of a page's loading: without a window there are no pages.
std::string withoutLoading(const std::string& lines) {
  if (lines.find("TermsAndConditions\"") == std::string::npos) {
    return lines;
  }
  std::istringstream all(lines);
  std::string kept;
  bool loading = false;
  for (std::string line; std::getline(all, line);) {
    const bool begins = line == R"({"event":"progress","status":"Please wait"})";
    const bool ends = loading && line == R"({"event":"progress","status":null})";
    loading = (loading || begins) && !ends;
    kept += begins || ends ? "" : line + "\n";
  }
  return kept;
}

class DrawnWalletStory : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(DrawnWalletStory, TellsTheSameLinesAsWithoutAWindow) {
  const test::TemporaryFolder folder;
  Server one(true);
  Server other(true);
  const std::string expected = tell(GetParam(), one, folder.path() / "headless", Face::headless);
  EXPECT_EQ(tell(GetParam(), other, folder.path() / "drawn", Face::drawn), expected);
  EXPECT_NE(expected.find("\"outcome\""), std::string::npos) << expected;
}

INSTANTIATE_TEST_SUITE_P(OverTls, DrawnWalletStory, testing::ValuesIn(stories("wallet")),
                         [](const auto& story) {
                           std::string name = story.param.stem().string();
                           std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
                           return name;
                         });

TEST(DrawnNewDeviceStories, TellTheSameLinesAsWithoutAWindow) {
  const test::TemporaryFolder folder;
  Server one(false);
  Server other(false);
  for (const std::filesystem::path& story : stories("new-device")) {
    const std::string drawn = tell(story, other, folder.path() / "drawn", Face::drawn);
    const std::string headless = tell(story, one, folder.path() / "headless", Face::headless);
    ASSERT_EQ(withoutLoading(drawn), withoutLoading(headless)) << story;
  }
}

}  // namespace
}  // namespace orlix::shop
