// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orlix {

/// Amount entry as on a cash register: digits are appended on the right, a deletion removes the
/// last one. Counts in whole cents, so that no amount is rounded.
class AmountEntry {
 public:
  /// The number at the beginning of the text (white space, sign, digits, point, exponent, in this
  /// order) in hundredths, rounded half away from zero; 0 without a number. Saturates at the limits
  /// of 64 bits.
  static std::int64_t centsOf(std::string_view text);

  /// Formats with a point and two decimals.
  static std::string textOf(std::int64_t cents);

  /// The field's text after an edit: an empty replacement deletes, any other appends its digits. A
  /// digit that would overflow 64 bits of cents is ignored.
  static std::string textAfter(std::string_view current, std::string_view replacement);
};

}  // namespace orlix
