// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Hexadecimal text and bytes. Thread: any.
class Hex {
 public:
  /// Decodes hex digits of either case. Spaces are skipped, and a trailing odd character is
  /// ignored. Never fails: each pair is read as strtol reads it in base 16, so reading stops at the
  /// first invalid character ("1G" is 1, "G1" is 0), a sign and leading white space other than the
  /// space are accepted ("-1" is FF, "\t5" is 05), and "0x" is 0.
  static Bytes convert(std::string_view text);

  /// Two upper-case digits per byte.
  static std::string encode(ByteView bytes);
};

}  // namespace orlix
