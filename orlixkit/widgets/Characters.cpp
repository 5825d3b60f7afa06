#include "orlixkit/widgets/Characters.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace orlix {

namespace {

/// Zero of every run of ten decimal digits in Unicode 14, in ascending order.
constexpr std::array<char32_t, 66> kZeros{
    0x0030,  0x0660,  0x06F0,  0x07C0,  0x0966,  0x09E6,  0x0A66,  0x0AE6,  0x0B66,  0x0BE6,
    0x0C66,  0x0CE6,  0x0D66,  0x0DE6,  0x0E50,  0x0ED0,  0x0F20,  0x1040,  0x1090,  0x17E0,
    0x1810,  0x1946,  0x19D0,  0x1A80,  0x1A90,  0x1B50,  0x1BB0,  0x1C40,  0x1C50,  0xA620,
    0xA8D0,  0xA900,  0xA9D0,  0xA9F0,  0xAA50,  0xABF0,  0xFF10,  0x104A0, 0x10D30, 0x11066,
    0x110F0, 0x11136, 0x111D0, 0x112F0, 0x11450, 0x114D0, 0x11650, 0x116C0, 0x11730, 0x118E0,
    0x11950, 0x11C50, 0x11D50, 0x11DA0, 0x16A60, 0x16AC0, 0x16B50, 0x1D7CE, 0x1D7D8, 0x1D7E2,
    0x1D7EC, 0x1D7F6, 0x1E140, 0x1E2F0, 0x1E950, 0x1FBF0};

std::uint8_t byteOf(char unit) { return static_cast<std::uint8_t>(unit); }

bool continues(char unit) { return (byteOf(unit) & 0xC0U) == 0x80U; }

/// Length that the first byte of a character announces; 1 for a byte that begins none.
std::size_t announcedLength(char first) {
  const std::uint8_t byte = byteOf(first);
  if (byte >= 0xF0U && byte < 0xF8U) {
    return 4;
  }
  if (byte >= 0xE0U && byte < 0xF0U) {
    return 3;
  }
  return byte >= 0xC0U && byte < 0xE0U ? 2 : 1;
}

char32_t codePointOf(std::string_view character) {
  static constexpr std::array<std::uint8_t, 5> kFirstByteMask{0, 0xFF, 0x1F, 0x0F, 0x07};
  char32_t code = byteOf(character.front()) & kFirstByteMask.at(character.size());
  for (const char unit : character.substr(1)) {
    code = (code << 6U) | (byteOf(unit) & 0x3FU);
  }
  return code;
}

}  // namespace

std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    const std::size_t announced = announcedLength(text.front());
    std::size_t length = 1;
    while (length < announced && length < text.size() && continues(text[length])) {
      ++length;
    }
    // A character that is cut short falls apart into its bytes.
    length = length == announced ? length : 1;
    characters.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return characters;
}

std::string decimalDigitsOf(std::string_view text) {
  std::string digits;
  for (const std::string_view character : charactersOf(text)) {
    const char32_t code = codePointOf(character);
    const auto above = std::upper_bound(kZeros.begin(), kZeros.end(), code);
    if (above != kZeros.begin() && code - *(above - 1) < 10) {
      digits.push_back(static_cast<char>('0' + (code - *(above - 1))));
    }
  }
  return digits;
}

}  // namespace orlix
