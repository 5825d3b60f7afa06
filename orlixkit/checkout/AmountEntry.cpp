// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/AmountEntry.h"

#include <limits>

#include <fmt/format.h>

#include "orlixkit/widgets/DecimalDigits.h"

namespace orlix {

namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
/// Far beyond any amount; keeps an exponent of many digits from overflowing.
constexpr std::int64_t kMostExponent = 1'000'000;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Reads characters one after the other.
struct Cursor {
  std::string_view rest;

  char peek() const { return rest.empty() ? '\0' : rest.front(); }
  char take() {
    const char c = peek();
    rest.remove_prefix(1);
    return c;
  }
  bool takeIf(char wanted) {
    const bool found = !rest.empty() && peek() == wanted;
    if (found) {
      rest.remove_prefix(1);
    }
    return found;
  }
};

/// The exponent after "e"; 0 without a complete one.
std::int64_t readExponent(Cursor text) {
  if (!text.takeIf('e') && !text.takeIf('E')) {
    return 0;
  }
  const bool negative = text.takeIf('-');
  if (!negative) {
    text.takeIf('+');
  }
  std::int64_t exponent = 0;
  while (isDigit(text.peek())) {
    const std::int64_t longer = exponent * 10 + (text.take() - '0');
    exponent = longer < kMostExponent ? longer : kMostExponent;
  }
  return negative ? -exponent : exponent;
}

/// `digits` times ten to the power of `shift`, rounded half away from zero.
std::int64_t shifted(const std::string& digits, std::int64_t shift) {
  const std::int64_t kept = static_cast<std::int64_t>(digits.size()) + shift;
  if (digits.empty() || kept < 0) {
    return 0;
  }
  constexpr std::int64_t kDigitsThatFit = 18;
  if (kept > kDigitsThatFit + 1) {
    return kMost;
  }
  std::int64_t value = 0;
  for (std::int64_t i = 0; i < kept; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const int digit = at < digits.size() ? digits[at] - '0' : 0;
    if (value > (kMost - digit) / 10) {
      return kMost;
    }
    value = value * 10 + digit;
  }
  const auto firstDropped = static_cast<std::size_t>(kept);
  const bool up = firstDropped < digits.size() && digits[firstDropped] >= '5';
  return up && value < kMost ? value + 1 : value;
}

}  // namespace

std::int64_t AmountEntry::centsOf(std::string_view text) {
  Cursor cursor{text};
  while (isSpace(cursor.peek())) {
    cursor.take();
  }
  const bool negative = cursor.takeIf('-');
  if (!negative) {
    cursor.takeIf('+');
  }
  std::string digits;  // without leading zeros
  std::int64_t decimals = 0;
  bool pointSeen = false;
  while (isDigit(cursor.peek()) || (!pointSeen && cursor.peek() == '.')) {
    const char c = cursor.take();
    if (c == '.') {
      pointSeen = true;
      continue;
    }
    decimals += pointSeen ? 1 : 0;
    if (c != '0' || !digits.empty()) {
      digits.push_back(c);
    }
  }
  const std::int64_t cents = shifted(digits, readExponent(cursor) - decimals + 2);
  return negative ? -cents : cents;
}

std::string AmountEntry::textOf(std::int64_t cents) {
  const std::int64_t size = cents < 0 ? -cents : cents;
  return fmt::format("{}{}.{:02}", cents < 0 ? "-" : "", size / 100, size % 100);
}

std::string AmountEntry::textAfter(std::string_view current, std::string_view replacement) {
  std::int64_t cents = centsOf(current);
  if (replacement.empty()) {
    const bool roundDown = cents < 0 && cents % 10 != 0;
    return textOf(cents / 10 - (roundDown ? 1 : 0));
  }
  for (const char c : decimalDigitsOf(replacement)) {
    const int digit = c - '0';
    // Digits stop being accepted where the cents would no longer fit, at some 92 quadrillion.
    if (cents >= -(kMost / 10) && cents <= (kMost - digit) / 10) {
      cents = cents * 10 + digit;
    }
  }
  return textOf(cents);
}

}  // namespace orlix
