#include "examples/shop/Utf8.h"

#include <cstddef>

namespace orlix::shop {

namespace {

unsigned byteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

bool within(unsigned byte, unsigned least, unsigned most) { return byte >= least && byte <= most; }

/// Bytes of the character that begins at `at`; 0 when it is none.
std::size_t characterLength(std::string_view text, std::size_t at) {
  const unsigned first = byteAt(text, at);
  const unsigned second = byteAt(text, at + 1);
  if (first < 0x80) {
    return 1;
  }
  if (within(first, 0xC2, 0xDF)) {
    return within(second, 0x80, 0xBF) ? 2 : 0;
  }
  const bool thirdFollows = within(byteAt(text, at + 2), 0x80, 0xBF);
  if (within(first, 0xE0, 0xEF)) {
    const unsigned least = first == 0xE0 ? 0xA0 : 0x80;
    const unsigned most = first == 0xED ? 0x9F : 0xBF;
    return within(second, least, most) && thirdFollows ? 3 : 0;
  }
  if (within(first, 0xF0, 0xF4)) {
    const unsigned least = first == 0xF0 ? 0x90 : 0x80;
    const unsigned most = first == 0xF4 ? 0x8F : 0xBF;
    return within(second, least, most) && thirdFollows && within(byteAt(text, at + 3), 0x80, 0xBF)
               ? 4
               : 0;
  }
  return 0;
}

}  // namespace

bool isUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = characterLength(text, at);
    if (length == 0) {
      return false;
    }
    at += length;
  }
  return true;
}

std::vector<std::string> characters(std::string_view text) {
  std::vector<std::string> found;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = characterLength(text, at);
    const std::size_t taken = length == 0 ? 1 : length;
    found.emplace_back(text.substr(at, taken));
    at += taken;
  }
  return found;
}

}  // namespace orlix::shop
