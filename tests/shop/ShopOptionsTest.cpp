// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "examples/shop/ShopOptions.h"

namespace orlix::shop {
namespace {

TEST(ShopOptions, HaveDefaultsAndThoseThatMakeNoSenseAreRefusedWithTheReason) {
  using Arguments = std::vector<std::string>;
  const auto complete = [](const Arguments& more) {
    Arguments all{"--server", "https://127.0.0.1:9/vello/", "--anchor", "a", "--state", "s"};
    all.insert(all.begin(), more.begin(), more.end());
    return all;
  };
  const ShopOptions bare = parseOptions(complete({}));
  EXPECT_EQ(bare.system, 1);
  EXPECT_EQ(bare.server, "https://127.0.0.1:9/vello");
  EXPECT_EQ(bare.terms, "https://127.0.0.1:9/terms/tavlo.html");
  EXPECT_FALSE(bare.location || bare.script || bare.darkColors || bare.rightToLeft);
  const ShopOptions look = parseOptions(complete({"--colors", "dark", "--right-to-left"}));
  EXPECT_EQ(look.darkColors, true);
  EXPECT_TRUE(look.rightToLeft);
  const std::vector<std::pair<Arguments, std::string>> rows{
      {{}, "--server is required"},
      {{"--server", "https://h/vello", "--state", "s"}, "--anchor is required"},
      {{"--server", "https://h/vello", "--anchor", "a"}, "--state is required"},
      {{"--server", "http://h/vello"}, "begins with https://"},
      {{"--server", "https:///vello"}, "begins with https://"},
      {{"--server", "https://h/vello?x"}, "begins with https://"},
      {{"--script"}, "--script: 1 required FILE missing"},
      {complete({"--script", ""}), "--script needs a value"},
      {complete({"--headless"}), "--headless requires --script"},
      {complete({"--system", "2"}), "--system is 0 (live) or 1 (test)"},
      {complete({"--location", "18.42"}), "--location needs LAT,LON"},
      {complete({"--window", "375"}), "--window needs WIDTHxHEIGHT"},
      {complete({"--window", "375x667x"}), "--window needs WIDTHxHEIGHT"},
      {complete({"--window", "0x-3"}), "--window needs WIDTHxHEIGHT"},
      {complete({"--colors", "pink"}), "--colors is light or dark, not \"pink\""},
      {complete({"--location", "91,0"}), "--location needs LAT,LON"},
      {complete({"--location", "nan,0"}), "--location needs LAT,LON"},
      {complete({"--state", "t"}), "--state: At Most 1 required but received 2"},
      {complete({"pay.shop"}), "not expected: pay.shop"},
  };
  for (const auto& [arguments, reason] : rows) {
    try {
      parseOptions(arguments);
      ADD_FAILURE() << "accepted; expected: " << reason;
    } catch (const UsageError& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(reason));
    }
  }
}

}  // namespace
}  // namespace orlix::shop
