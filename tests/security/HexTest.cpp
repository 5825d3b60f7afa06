#include <gtest/gtest.h>

#include "orlixkit/security/Base64.h"
#include "orlixkit/security/Hex.h"

namespace orlix {

namespace {

using namespace std::string_view_literals;

TEST(Hex, EncodesTwoUpperCaseDigitsPerByte) {
  EXPECT_EQ(Hex::encode(Bytes{0x00, 0xAB, 0x0F}), "00AB0F");
  EXPECT_EQ(Hex::encode(Bytes{}), "");
}

TEST(Hex, ReadsEachPairAsStrtolDoes) {
  const struct {
    std::string_view text;
    Bytes bytes;
  } rows[] = {
      {"00 ab 0f", {0x00, 0xAB, 0x0F}},
      {"a B", {0xAB}},
      {"ABC", {0xAB}},
      {"A", {}},
      {"", {}},
      {"1G", {0x01}},
      {"G1", {0x00}},
      {"-1", {0xFF}},
      {"-f", {0xF1}},
      {"+a", {0x0A}},
      {"--", {0x00}},
      {"\t5", {0x05}},
      {"5\t", {0x05}},
      {"\n-", {0x00}},
      {"0x", {0x00}},
      {"0x1F", {0x00, 0x1F}},
      {"x1", {0x00}},
      {"\0001"sv, {0x00}},
      {"1\0"sv, {0x01}},
      {"\xC3\xA9", {0x00}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Hex::convert(row.text), row.bytes) << '"' << row.text << '"';
  }
}

TEST(Base64, ReadsTheStandardAlphabetAndNothingElse) {
  const struct {
    std::string_view text;
    std::optional<std::string> hex;
  } rows[] = {
      // RFC 4648, section 10.
      {"", ""},
      {"Zg==", "66"},
      {"Zm8=", "666F"},
      {"Zm9v", "666F6F"},
      {"Zm9vYg==", "666F6F62"},
      {"Zm9vYmFy", "666F6F626172"},
      {"+/+/", "FBFFBF"},
      {"ASNFZ4mrze/+3LqYdlQyEA==", "0123456789ABCDEFFEDCBA9876543210"},
      // The bits behind the last byte do not count.
      {"Zh==", "66"},
      {"Zg=", std::nullopt},
      {"Zg", std::nullopt},
      {"Z", std::nullopt},
      {"Zg=a", std::nullopt},
      {"Z===", std::nullopt},
      {"====", std::nullopt},
      {"Zm9v====", std::nullopt},
      {"Zg==Zg==", std::nullopt},
      {"Zm9v\n", std::nullopt},
      {"Zm 9", std::nullopt},
      {"Zm9_", std::nullopt},
      {"Zm9\xC3", std::nullopt},
      {"Zm\0v"sv, std::nullopt},
  };
  for (const auto& row : rows) {
    const auto bytes = Base64::decode(row.text);
    EXPECT_EQ(bytes.has_value(), row.hex.has_value()) << '"' << row.text << '"';
    if (bytes && row.hex) {
      EXPECT_EQ(Hex::encode(bytes->reveal()), *row.hex) << '"' << row.text << '"';
    }
  }
}

}  // namespace

}  // namespace orlix
