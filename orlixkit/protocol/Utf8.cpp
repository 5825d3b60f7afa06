#include "orlixkit/protocol/Utf8.h"

#include <stdexcept>

namespace orlix {

namespace {

bool isContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

/// Number of bytes that a character with this first byte has; 0 when none begins so.
std::size_t lengthFrom(unsigned char first) {
  if (first < 0x80U) {
    return 1;
  }
  if (first >= 0xC2U && first <= 0xDFU) {
    return 2;
  }
  if (first >= 0xE0U && first <= 0xEFU) {
    return 3;
  }
  return first >= 0xF0U && first <= 0xF4U ? 4 : 0;
}

/// Overlong forms, surrogates and what lies above U+10FFFF all show in the second byte.
bool isSecondByte(unsigned char first, unsigned char second) {
  switch (first) {
    case 0xE0U:
      return second >= 0xA0U && second <= 0xBFU;
    case 0xEDU:
      return second >= 0x80U && second <= 0x9FU;
    case 0xF0U:
      return second >= 0x90U && second <= 0xBFU;
    case 0xF4U:
      return second >= 0x80U && second <= 0x8FU;
    default:
      return isContinuation(second);
  }
}

}  // namespace

bool isUtf8(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = lengthFrom(first);
    if (length == 0 || text.size() - at < length) {
      return false;
    }
    for (std::size_t i = 1; i < length; ++i) {
      const auto byte = static_cast<unsigned char>(text[at + i]);
      if (i == 1 ? !isSecondByte(first, byte) : !isContinuation(byte)) {
        return false;
      }
    }
    at += length;
  }
  return true;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  std::size_t found = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isContinuation(static_cast<unsigned char>(text[at]))) {
      continue;
    }
    if (found == count) {
      return text.substr(0, at);
    }
    ++found;
  }
  if (found < count) {
    throw std::out_of_range("the text has too few characters");
  }
  return text;
}

}  // namespace orlix
