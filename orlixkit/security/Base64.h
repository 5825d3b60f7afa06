// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string_view>

#include "orlixkit/ports/Secret.h"

namespace orlix {

/// Base64 of the standard alphabet with padding (RFC 4648, section 4). Thread: any.
class Base64 {
 public:
  /// Decodes a text; absent when a character lies outside the alphabet (white space and line ends
  /// included) or the padding is missing, misplaced or too long. Unused bits before the padding are
  /// ignored. Returns a secret because the encoded values are keys.
  static std::optional<SecretBytes> decode(std::string_view text);
};

}  // namespace orlix
