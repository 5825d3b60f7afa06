// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "orlixkit/security/Base64.h"
#include "orlixkit/security/Hex.h"

namespace orlix {

namespace {

using namespace std::string_view_literals;

TEST(Hex, ReadsEachPairAsStrtolDoes) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"00 ab 0f", "00AB0F"}, {"a B", "AB"},   {"ABC", "AB"},     {"A", ""},        {"", ""},
      {"1G", "01"},           {"G1", "00"},    {"-f", "F1"},      {"+a", "0A"},     {"--", "00"},
      {"\t5", "05"},          {"5\t", "05"},   {"\n-", "00"},     {"0x1F", "001F"}, {"x1", "00"},
      {"\0001"sv, "00"},      {"1\0"sv, "01"}, {"\xC3\xA9", "00"}};
  for (const auto& [text, bytes] : rows) {
    EXPECT_EQ(Hex::encode(Hex::convert(text)), bytes) << '"' << text << '"';
  }
}

TEST(Base64, ReadsTheStandardAlphabetAndNothingElse) {
  // RFC 4648, section 10; the bits behind the last byte do not count.
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"", ""},
      {"Zg==", "66"},
      {"Zm8=", "666F"},
      {"Zm9vYmFy", "666F6F626172"},
      {"+/+/", "FBFFBF"},
      {"Zh==", "66"},
      {"ASNFZ4mrze/+3LqYdlQyEA==", "0123456789ABCDEFFEDCBA9876543210"}};
  for (const auto& [text, hex] : rows) {
    const auto bytes = Base64::decode(text);
    ASSERT_TRUE(bytes) << text;
    EXPECT_EQ(Hex::encode(bytes->reveal()), hex) << text;
  }
  for (const std::string_view text :
       {"Zg="sv, "Zg"sv, "Z"sv, "Zg=a"sv, "Z==="sv, "===="sv, "Zm9v===="sv, "Zg==Zg=="sv,
        "Zm9v\n"sv, "Zm 9"sv, "Zm9_"sv, "Zm9\xC3"sv, "Zm\0v"sv}) {
    EXPECT_FALSE(Base64::decode(text)) << text;
  }
}

}  // namespace

}  // namespace orlix
