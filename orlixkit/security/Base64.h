#pragma once

#include <optional>
#include <string_view>

#include "orlixkit/platform/Secret.h"

namespace orlix {

/// Base64 of the standard alphabet with padding (RFC 4648, section 4). Thread: any.
class Base64 {
 public:
  /// The bytes that the text stands for; none when a character lies outside the alphabet (white
  /// space and line ends included) or the padding is missing, misplaced or too long. Spare bits
  /// before the padding are not looked at. What comes in this form is a key, hence the type.
  static std::optional<SecretBytes> decode(std::string_view text);
};

}  // namespace orlix
