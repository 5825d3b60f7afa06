// SPDX-License-Identifier: Apache-2.0

// Every story of the shop, by real touches and keys on the drawn screens: it ends as it says,
// in the same lines as without a window.

#include "examples/shop/window/DrawnShop.h"
#include "tests/shop/Story.h"

namespace orlix::shop {
namespace {

void drawn(const ShopOptions& options, ScriptSource& script, std::ostream& lines,
           std::ostream& progress) {
  DrawnShop(options, lines, progress).run(script);
}

/// Without what takes time only where it is drawn: the fade of the indicator, which may end after
/// the next screen has come, the loading of a page, and a screen whose successor of the same kind
/// comes before it has been seen (the lookup that waits for accepted terms).
std::string withoutWaiting(const std::string& lines) {
  const bool hasPage = lines.find("TermsAndConditions\"") != std::string::npos;
  std::istringstream all(lines);
  std::string kept;
  std::string before;
  for (std::string line; std::getline(all, line);) {
    const bool fades = line == R"({"event":"progress","status":null})";
    const bool loads = hasPage && line == R"({"event":"progress","status":"Please wait"})";
    const bool repeats = line == before && line.starts_with(R"({"event":"screen")");
    if (!fades && !loads && !repeats) {
      kept += line + "\n";
      before = line;
    }
  }
  return kept;
}

/// How the story goes on a drawn screen, compared with how it goes without a window.
void compare(const std::filesystem::path& story, Server& one, Server& other,
             const std::filesystem::path& state) {
  const Told expected = tell(story, one, state / "headless", headless);
  const Told told = tell(story, other, state / "drawn", drawn);
  ASSERT_EQ(expected.wrong + told.wrong, "") << story;
  EXPECT_EQ(withoutWaiting(told.lines), withoutWaiting(expected.lines)) << story;
}

class DrawnWalletStory : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(DrawnWalletStory, TellsTheSameLinesAsWithoutAWindow) {
  const test::TemporaryFolder folder;
  Server one(true);
  Server other(true);
  compare(GetParam(), one, other, folder.path());
}

INSTANTIATE_TEST_SUITE_P(OverTls, DrawnWalletStory, testing::ValuesIn(stories("wallet")),
                         nameOfStory);

TEST(DrawnNewDeviceStories, TellTheSameLinesAsWithoutAWindow) {
  const test::TemporaryFolder folder;
  Server one(false);
  Server other(false);
  for (const std::filesystem::path& story : stories("new-device")) {
    ASSERT_NO_FATAL_FAILURE(compare(story, one, other, folder.path()));
  }
}

class DrawnSecureStory : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(DrawnSecureStory, EndsAsItSaysAndIsPaidOnceAtMost) {
  const test::TemporaryFolder folder;
  Server server(true);
  const Told told = tell(GetParam(), server, folder.path(), drawn);
  EXPECT_EQ(told.wrong, "");
  // To the server an authentication is a purchase as well.
  const auto has = [&](const char* text) { return told.lines.find(text) != std::string::npos; };
  const auto state = boost::json::parse(server.sandbox().control("GET", "/control/state"));
  EXPECT_EQ(state.at("purchasesPaid").to_number<int>(),
            has("orlixPaymentSucceeded") + has("3DAuthSecureCode"));
}

INSTANTIATE_TEST_SUITE_P(OverTls, DrawnSecureStory, testing::ValuesIn(stories("secure")),
                         nameOfStory);

}  // namespace
}  // namespace orlix::shop
