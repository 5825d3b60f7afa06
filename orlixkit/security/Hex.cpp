// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/Hex.h"

#include <algorithm>
#include <cstdlib>

namespace orlix {

Bytes Hex::convert(std::string_view text) {
  std::string digits(text);
  std::erase(digits, ' ');
  Bytes bytes;
  bytes.reserve(digits.size() / 2);
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    const char pair[] = {digits[i], digits[i + 1], '\0'};
    bytes.push_back(static_cast<std::uint8_t>(std::strtol(pair, nullptr, 16)));
  }
  return bytes;
}

std::string Hex::encode(ByteView bytes) {
  constexpr std::string_view kDigitOf = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += kDigitOf[byte >> 4U];
    text += kDigitOf[byte & 0xFU];
  }
  return text;
}

}  // namespace orlix
