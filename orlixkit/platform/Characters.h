#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace orlix {

/// Whether a character (code point) of a UTF-8 text starts with this byte.
constexpr bool startsCharacter(char unit) {
  return (static_cast<unsigned char>(unit) & 0xC0U) != 0x80U;
}

/// Number of characters in a UTF-8 text.
constexpr std::size_t countCharacters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

}  // namespace orlix
