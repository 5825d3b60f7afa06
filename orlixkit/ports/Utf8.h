// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <vector>

// UTF-8 (RFC 3629). A character is a code point.

namespace orlix {

/// Whether this byte begins a character; false for a continuation byte.
constexpr bool startsCharacter(char unit) {
  return (static_cast<std::uint8_t>(unit) & 0xC0U) != 0x80U;
}

/// Number of characters in a text, counted as the bytes that begin one.
constexpr std::size_t countCharacters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

/// The first `count` characters of a text. Throws std::out_of_range when there are fewer.
inline std::string_view firstCharacters(std::string_view text, std::size_t count) {
  std::size_t found = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    found += startsCharacter(text[at]) ? 1 : 0;
    if (found > count) {
      return text.substr(0, at);
    }
  }
  if (found < count) {
    throw std::out_of_range("the text has too few characters");
  }
  return text;
}

/// Length in bytes of the character at the front of a non-empty text. 1 for an invalid byte, so
/// that a truncated sequence is read as single bytes.
constexpr std::size_t firstCharacterLength(std::string_view text) {
  const auto first = static_cast<std::uint8_t>(text.front());
  const std::size_t announced = first < 0xC0U ? 1 : first < 0xE0U ? 2 : first < 0xF0U ? 3 : 4;
  std::size_t length = 1;
  while (length < announced && length < text.size() && !startsCharacter(text[length])) {
    ++length;
  }
  return length == announced && first < 0xF8U ? length : 1;
}

/// The code point of one character, as `firstCharacterLength` delimits it.
constexpr char32_t codePointOf(std::string_view character) {
  constexpr std::array<std::uint8_t, 5> kFirstByteMask{0, 0xFF, 0x1F, 0x0F, 0x07};
  char32_t code =
      static_cast<std::uint8_t>(character.front()) & kFirstByteMask.at(character.size());
  for (const char unit : character.substr(1)) {
    code = (code << 6U) | (static_cast<std::uint8_t>(unit) & 0x3FU);
  }
  return code;
}

/// The characters of a text, as views into it. An invalid byte counts as one character.
inline std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    characters.push_back(text.substr(0, firstCharacterLength(text)));
    text.remove_prefix(characters.back().size());
  }
  return characters;
}

/// True for well-formed text: no overlong form, no surrogate, nothing above U+10FFFF.
constexpr bool isUtf8(std::string_view text) {
  constexpr std::array<char32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  while (!text.empty()) {
    const std::size_t length = firstCharacterLength(text);
    const char32_t code = codePointOf(text.substr(0, length));
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool standsAlone = length == 1 && code >= 0x80;
    if (standsAlone || isSurrogate || code < kLeast.at(length) || code > 0x10FFFF) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace orlix
