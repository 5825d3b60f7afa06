// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "orlixkit/checkout/AmountEntry.h"

namespace orlix::test {

TEST(AmountEntry, TextsAreReadAsTheNumberTheyBeginWith) {
  constexpr std::int64_t kMost = 9223372036854775807;
  const std::vector<std::pair<std::string, std::int64_t>> cases{
      {"", 0},        {"abc", 0},        {"-", 0},       {".", 0},         {"-0.00", 0},
      {"12.5", 1250}, {"1.25", 125},     {".5", 50},     {"5.", 500},      {" \t\r7.10 R", 710},
      {"+3", 300},    {"-1.5", -150},    {"1,50", 100},  {"1.2.3", 120},   {"R 5", 0},
      {"1.005", 101}, {"1.004999", 100}, {"0.005", 1},   {"-0.005", -1},   {"0.0049", 0},
      {"2.675", 268}, {"1e2", 10000},    {"1e-1", 10},   {"12e", 1200},    {"1E+1x", 1000},
      {"5e-3", 1},    {"1e-99999", 0},   {"0e99999", 0}, {"1e400", kMost}, {"-1e400", -kMost}};
  for (const auto& [text, cents] : cases) {
    EXPECT_EQ(AmountEntry::centsOf(text), cents) << '"' << text << '"';
  }
  EXPECT_EQ(AmountEntry::centsOf("92233720368547758.07"), kMost);
  EXPECT_EQ(AmountEntry::centsOf("92233720368547758.08"), kMost);
  EXPECT_EQ(AmountEntry::centsOf("92233720368547758.075"), kMost);
  EXPECT_EQ(AmountEntry::centsOf("92233720368547758.06"), kMost - 1);
  EXPECT_EQ(AmountEntry::centsOf("1e" + std::string(19, '9')), kMost);
  EXPECT_EQ(AmountEntry::centsOf(std::string(30, '0') + "12.34"), 1234);
  EXPECT_EQ(AmountEntry::centsOf(std::string(400, '9')), kMost);
}

TEST(AmountEntry, DigitsComeInFromTheRightAndADeletionTakesTheLast) {
  struct Case {
    std::string before, typed, after;
  };
  const std::vector<Case> cases{{"0.00", "1", "0.01"},
                                {"0.01", "2", "0.12"},
                                {"0.12", "5", "1.25"},
                                {"1.25", "", "0.12"},
                                {"0.01", "", "0.00"},
                                {"0.00", "", "0.00"},
                                {"", "7", "0.07"},
                                {"0.00", "1a2.b5", "1.25"},
                                {"1.25", "x", "1.25"},
                                {"12.5", "0", "125.00"},
                                {"abc", "4", "0.04"},
                                {"-1.55", "", "-0.16"},
                                {"-0.05", "", "-0.01"},
                                {"-1.50", "", "-0.15"},
                                {"-92233720368547758.07", "1", "-92233720368547758.07"},
                                {"0.00", "\xEF\xBC\x91", "0.01"},
                                {"-9000000000000000.00", "1", "-89999999999999999.99"}};
  for (const Case& row : cases) {
    EXPECT_EQ(AmountEntry::textAfter(row.before, row.typed), row.after)
        << row.before << " and " << row.typed;
  }
  const std::string most = "92233720368547758.07";
  EXPECT_EQ(AmountEntry::textAfter("9223372036854775.80", "7"), most);
  EXPECT_EQ(AmountEntry::textAfter("9223372036854775.81", "0"), "9223372036854775.81");
  EXPECT_EQ(AmountEntry::textAfter(most, "1"), most);
  std::string text = "0.00";
  for (int i = 0; i < 200; ++i) {
    text = AmountEntry::textAfter(text, i < 100 ? "9" : "");
    EXPECT_TRUE(i != 99 || text == "9999999999999999.99") << text;
  }
  EXPECT_EQ(text, "0.00") << "an amount that took any number of digits has lost none";
}

}  // namespace orlix::test
