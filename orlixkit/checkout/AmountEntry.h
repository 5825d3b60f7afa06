// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orlix {

/// Amount entry as on a cash register: digits come in from the right, a deletion takes the last one
/// away. All in whole cents, so that no amount is rounded.
class AmountEntry {
 public:
  /// The number that the text begins with, in hundredths, rounded half away from zero: white space,
  /// sign, digits, point, exponent, in this order; 0 when there is none. What does not fit counts
  /// as the largest value that does.
  static std::int64_t centsOf(std::string_view text);

  /// Two decimals after a point.
  static std::string textOf(std::int64_t cents);

  /// The field's next text: a deletion for an empty replacement, else its digits one by one. A
  /// digit with which the cents would no longer fit 64 bits is not accepted.
  static std::string textAfter(std::string_view current, std::string_view replacement);
};

}  // namespace orlix
