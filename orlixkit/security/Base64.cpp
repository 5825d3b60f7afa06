// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/Base64.h"

#include <cstdint>
#include <optional>

namespace orlix {

namespace {

std::optional<std::uint32_t> valueOf(char letter) {
  static constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t value = kAlphabet.find(letter);
  if (value == std::string_view::npos) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(value);
}

std::size_t paddingOf(std::string_view text) {
  if (text.ends_with("==")) {
    return 2;
  }
  return text.ends_with('=') ? 1 : 0;
}

}  // namespace

std::optional<SecretBytes> Base64::decode(std::string_view text) {
  if (text.size() % 4 != 0) {
    return std::nullopt;
  }
  const std::size_t padding = paddingOf(text);
  SecretBytes bytes(text.size() / 4 * 3 - padding, 0);
  std::size_t written = 0;
  for (std::size_t start = 0; start < text.size(); start += 4) {
    std::uint32_t group = 0;
    for (std::size_t i = start; i < start + 4; ++i) {
      const auto value =
          i < text.size() - padding ? valueOf(text[i]) : std::optional<std::uint32_t>(0);
      if (!value) {
        return std::nullopt;
      }
      group = group << 6U | *value;
    }
    for (const unsigned shift : {16U, 8U, 0U}) {
      if (written < bytes.size()) {
        bytes.data()[written++] = static_cast<std::uint8_t>(group >> shift);
      }
    }
  }
  return bytes;
}

}  // namespace orlix
