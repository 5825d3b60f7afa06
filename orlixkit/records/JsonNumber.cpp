// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>
#include <variant>

namespace orlix {

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

/// Accumulated as a negative number, since the smallest one has no positive counterpart.
class NegatedInteger {
 public:
  void append(char digit) {
    const std::int64_t value = digit - '0';
    full_ = full_ || negated_ < (kSmallest + value) / 10;
    negated_ = full_ ? kSmallest : negated_ * 10 - value;
  }
  bool isFull() const { return full_; }
  bool isZero() const { return negated_ == 0; }
  std::int64_t withSign(bool negative) const {
    if (negative) {
      return negated_;
    }
    return negated_ == kSmallest ? kLargest : -negated_;
  }

 private:
  std::int64_t negated_ = 0;
  bool full_ = false;
};

/// The JSON parser refuses exponents beyond 32 bits.
std::int64_t exponentOf(std::string_view digits) {
  if (digits.starts_with('+')) {
    digits.remove_prefix(1);
  }
  std::int64_t exponent = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
  return exponent;
}

}  // namespace

std::int64_t integerPart(std::string_view number) {
  const bool negative = number.starts_with('-');
  if (negative || number.starts_with('+')) {
    number.remove_prefix(1);
  }
  const std::size_t end = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, end);
  // Number of digits before the point after applying the exponent.
  auto places = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  if (end < number.size()) {
    places += exponentOf(number.substr(end + 1));
  }
  NegatedInteger integer;
  for (const char digit : digits) {
    if (digit != '.' && places-- > 0) {
      integer.append(digit);
    }
  }
  while (places-- > 0 && !integer.isZero() && !integer.isFull()) {
    integer.append('0');
  }
  return integer.withSign(negative);
}

std::int64_t integerPart(double number) {
  // The bounds are powers of two, exact as doubles.
  if (number >= 9223372036854775808.0) {
    return kLargest;
  }
  return number <= -9223372036854775808.0 ? kSmallest : static_cast<std::int64_t>(number);
}

std::variant<double, std::int64_t> keptNumber(std::string_view number) {
  const std::int64_t integer = integerPart(number);
  // The JSON library's own double is sometimes off by a unit in the last place.
  double nearest = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), nearest);
  if (result.ec == std::errc::result_out_of_range && integer != 0) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    return integer > 0 ? kInfinity : -kInfinity;
  }
  if (nearest == 0) {
    return 0.0;
  }
  for (const double candidate : {nearest, std::nextafter(nearest, 0.0)}) {
    if (integerPart(candidate) == integer) {
      return candidate;
    }
  }
  return integer;
}

}  // namespace orlix
