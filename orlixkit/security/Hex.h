#pragma once

#include <string>
#include <string_view>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// Hexadecimal text and bytes. Thread: any.
class Hex {
 public:
  /// Bytes of a text of hex digits in either case. Spaces are left out, a trailing odd character is
  /// ignored. Nothing fails: each pair is read as strtol reads it to the base 16, so reading stops
  /// at the first character that does not belong ("1G" is 1, "G1" is 0), a sign and leading white
  /// space other than the space itself are taken ("-1" is FF, "\t5" is 05), and "0x" is 0.
  static Bytes convert(std::string_view text);

  /// Two upper-case digits a byte.
  static std::string encode(ByteView bytes);
};

}  // namespace orlix
