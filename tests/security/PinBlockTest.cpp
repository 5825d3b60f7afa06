// SPDX-License-Identifier: Apache-2.0

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>
#include <openssl/err.h>

#include "orlixkit/security/Hex.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix {

namespace {

std::string hex(const SecretBytes& bytes) { return Hex::encode(bytes.reveal()); }

SecretBytes key(std::string_view digits) { return SecretBytes(Hex::convert(digits)); }

constexpr std::string_view kSomeKey = "0123456789ABCDEFFEDCBA9876543210";

TEST(PinBlock, IsThePinFieldXorTheAccountField) {
  const struct {
    const char* name;
    std::string_view pin;
    std::int64_t reference;
    const char* block;
  } rows[] = {
      {"published example of ISO 9564 format 0", "1234", 765432109876, "041242ABCDEF6789"},
      {"reference 0", "1234", 0, "041234FFFFFFFFFF"},
      {"12 digits", "1234", 123456789012, "041226CBA9876FED"},
      {"few digits", "1234", 42, "041234FFFFFFFFBD"},
      {"longest PIN of the format", "123456789", 0, "09123456789FFFFF"},
      {"10 digits: the length takes two digits", "1234567890", 0, "0101234567890FFF"},
      {"13 digits fill the field", "1234567890123", 0, "0131234567890123"},
      {"14 digits make it longer", "12345678901234", 0, "014123456789012340"},
      {"no PIN", "", 0, "00FFFFFFFFFFFFFF"},
      {"no digit as high nibble", "x234", 0, "04F234FFFFFFFFFF"},
      {"no digit as low nibble", "1x34", 0, "04FF34FFFFFFFFFF"},
      {"two bytes are one character, high", "\u00E9234", 0, "04F234FFFFFFFFFF"},
      {"three bytes are one character, low", "1\u20AC34", 0, "04FF34FFFFFFFFFF"},
      {"four bytes are one character, last", "123\U0001F600", 0, "0412FFFFFFFFFFFF"},
      {"negative reference: the minus is no digit", "1234", -5, "041234FFFFFFFF0A"},
      {"12 characters with the minus", "1234", -12345678901, "0412C5DCBA9876FE"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(hex(PinBlock::generatePinBlock(SecretString(row.pin), row.reference)), row.block)
        << row.name;
  }
}

TEST(PinBlock, RefusesReferencesOfThirteenCharacters) {
  const std::int64_t references[] = {1234567890123, 1000000000000, -123456789012,
                                     std::numeric_limits<std::int64_t>::max(),
                                     std::numeric_limits<std::int64_t>::min()};
  for (const std::int64_t reference : references) {
    EXPECT_THROW(PinBlock::generatePinBlock(SecretString("1234"), reference), std::out_of_range)
        << reference;
    EXPECT_THROW(PinBlock::createPINBlock(key(kSomeKey), SecretString("1234"), reference),
                 std::out_of_range)
        << reference;
  }
  EXPECT_NO_THROW(PinBlock::generatePinBlock(SecretString("1234"), 999999999999));
}

// The expected texts come from `openssl enc -des-ede -nopad` over the clear blocks above.
TEST(PinBlock, IsEncryptedWithTwoKeyTripleDes) {
  const SecretString pin("1234");
  EXPECT_EQ(PinBlock::createPINBlock(key(kSomeKey), pin, 0), "F005B8AE32436B80");
  EXPECT_EQ(PinBlock::createPINBlock(key(kSomeKey), pin, 765432109876), "F08FBB94F779A954");
  EXPECT_EQ(PinBlock::createPINBlock(key(std::string(kSomeKey) + "55AA"), pin, 0),
            "F005B8AE32436B80")
      << "only 16 bytes of the key count";
  EXPECT_EQ(PinBlock::createPINBlock(key("0123456789"), pin, 0), "26708AF0B41D2DB4")
      << "a short key is filled with zeros";
  EXPECT_EQ(PinBlock::createPINBlock(SecretBytes(), pin, 0),
            PinBlock::createPINBlock(SecretBytes(16, 0), pin, 0));
}

TEST(PinBlock, ThatTheCipherRefusesIsNone) {
  EXPECT_EQ(PinBlock::createPINBlock(key(kSomeKey), SecretString("12345678901234"), 0),
            std::nullopt);
  EXPECT_EQ(ERR_peek_error(), 0U) << "a later TLS call would take the left error for its own";
  const std::string longPin(29, '1');
  const auto two = PinBlock::createPINBlock(key(kSomeKey), SecretString(longPin), 0);
  ASSERT_TRUE(two) << "a field of 32 digits makes two whole blocks";
  EXPECT_EQ(two->size(), 32U);
}

TEST(PinBlock, PacksASerialIntoSixteenBytes) {
  const std::string digits = "0123456789ABCDEFFEDCBA9876543210";
  const std::string last = "00112233445566778899AABBCCDDEEFF";
  // What is short is filled with zeros behind; a separator at the end packs to FF.
  const std::pair<std::string, std::string> rows[] = {
      {"01234567-89ab-cdef-FEDC-BA9876543210", digits},
      {digits, digits},
      {"ABC", "ABC0"},
      {"AB--", "ABFF"},
      {"AB-", "ABFF"},
      {"ABC--", "ABC0"},
      {"-A--B-C", "ABC0"},
      {"--", "FF"},
      {"", ""},
      {"12345678" + last, last},
      {"12345678" + last + "-", last.substr(2) + "FF"}};
  for (const auto& [text, bytes] : rows) {
    EXPECT_EQ(hex(PinBlock::nibblePackSerial(text)), bytes + std::string(32 - bytes.size(), '0'))
        << text;
  }
}

TEST(PinBlock, IsMadeOfPartsThatKeepTheirOddities) {
  EXPECT_EQ(PinBlock::padStart(SecretString("12"), 4, '0').text(), "0012");
  for (const std::int32_t minimum : {2, -3}) {
    EXPECT_EQ(PinBlock::padStart(SecretString("12"), minimum, '0').text(), "12") << minimum;
    EXPECT_EQ(PinBlock::padEnd(SecretString("12"), minimum, '0').text(), "12") << minimum;
  }
  EXPECT_EQ(PinBlock::padStart(SecretString("\u20AC2"), 3, '0').text(), "0\u20AC2");
  EXPECT_EQ(PinBlock::padEnd(SecretString("1\u20AC"), 3, 'F').text(), "1\u20ACF");
  const std::pair<const char*, const char*> packed[] = {
      {"0aF9", "0AF9"}, {"ABC", "ABC0"}, {"G", "F0"},      {"G3", "F3"},
      {"3G", "FF"},     {"", ""},        {"\u20AC", "F0"}, {"1\u00E92", "FF20"}};
  for (const auto& [digits, bytes] : packed) {
    EXPECT_EQ(hex(PinBlock::nibblePackString(digits)), bytes) << digits;
  }
  const Bytes three{0x01, 0x02, 0x03};
  const Bytes five{0xFF, 0xFF, 0xFF, 0x44, 0x55};
  EXPECT_EQ(hex(PinBlock::xorArrays(three, five)), "FEFDFC4455") << "the longer one's end stays";
  EXPECT_EQ(hex(PinBlock::xorArrays(five, three)), "FEFDFC4455");
  EXPECT_EQ(hex(PinBlock::addParity(Bytes{0x00, 0x01, 0x03, 0xFE, 0xFF})), "010102FEFE");
}

}  // namespace

}  // namespace orlix
