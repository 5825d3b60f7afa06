#include <gtest/gtest.h>

#include "sandbox/PinBlock.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

TEST(PinBlock, HoldsThePinOnlyInTheFormOfIso9564Format0) {
  const std::string key = "0123456789abcdef";
  const std::vector<unsigned char> keyBytes(key.begin(), key.end());
  struct Row {
    const char* what;
    std::string clear;
    bool holds;
  };
  const std::vector<Row> rows{
      {"the PIN 1234", "\x04\x12\x34\xFF\xFF\xFF\xFF\xFF", true},
      {"another PIN", "\x04\x12\x35\xFF\xFF\xFF\xFF\xFF", false},
      {"a longer PIN", "\x05\x12\x34\x5F\xFF\xFF\xFF\xFF", false},
      {"a wrong length nibble", "\x05\x12\x34\xFF\xFF\xFF\xFF\xFF", false},
      {"another format", "\x14\x12\x34\xFF\xFF\xFF\xFF\xFF", false},
      {"filling that is not F", "\x04\x12\x34\xFF\xFF\xFF\xFF\xF0", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(holdsPin(enciphered(row.clear, key), keyBytes, "1234"), row.holds) << row.what;
  }
  EXPECT_FALSE(holdsPin("04", keyBytes, "1234"));
  EXPECT_FALSE(holdsPin(enciphered(rows[0].clear, key), {}, "1234"));
}

}  // namespace
}  // namespace orlix::sandbox::test
