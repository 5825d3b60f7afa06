#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "examples/shop/ShopOptions.h"

namespace orlix::shop {
namespace {

using Arguments = std::vector<std::string>;

Arguments complete(const Arguments& more = {}) {
  Arguments all{"--server", "https://127.0.0.1:9/vello", "--anchor", "a.cer", "--state", "s"};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

TEST(ShopOptions, LeaveTheTestSystemAndTheServersTermsPageByDefault) {
  const ShopOptions options = parseOptions(complete());
  EXPECT_EQ(options.system, 1);
  EXPECT_EQ(options.terms, "https://127.0.0.1:9/terms/tavlo.html");
  EXPECT_FALSE(options.location);
  EXPECT_FALSE(options.script);
}

TEST(ShopOptions, AreReadInAnyOrder) {
  const ShopOptions options =
      parseOptions({"--headless", "--location", "-33.92,18.42", "--system", "0", "--terms",
                    "https://t/x", "--script", "pay.shop", "--snapshots", "p", "--state", "s",
                    "--anchor", "a.cer", "--server", "https://wallet.example/vello/"});
  EXPECT_TRUE(options.headless);
  EXPECT_EQ(options.server, "https://wallet.example/vello");
  EXPECT_DOUBLE_EQ(options.location->first, -33.92);
  EXPECT_DOUBLE_EQ(options.location->second, 18.42);
  EXPECT_EQ(options.system, 0);
  EXPECT_EQ(options.terms, "https://t/x");
  EXPECT_EQ(options.snapshots, "p");
}

TEST(ShopOptions, ThatMakeNoSenseAreRefusedWithTheReason) {
  const std::vector<std::pair<Arguments, std::string>> rows{
      {{}, "--server is missing"},
      {{"--server", "https://h/vello", "--state", "s"}, "--anchor is missing"},
      {{"--server", "https://h/vello", "--anchor", "a"}, "--state is missing"},
      {{"--server", "http://h/vello"}, "begins with https://"},
      {{"--server", "https:///vello"}, "begins with https://"},
      {{"--server", "https://h/vello?x"}, "begins with https://"},
      {complete({"--script"}), "--script needs a value"},
      {complete({"--headless"}), "--headless needs a --script"},
      {complete({"--system", "2"}), "--system is 0 (live) or 1 (test)"},
      {complete({"--location", "18.42"}), "--location needs LAT,LON"},
      {complete({"--location", "91,0"}), "--location needs LAT,LON"},
      {complete({"--location", "nan,0"}), "--location needs LAT,LON"},
      {complete({"--state", "t"}), "--state is given twice"},
      {complete({"pay.shop"}), "unknown argument \"pay.shop\""},
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
