// SPDX-License-Identifier: Apache-2.0

// The amount field as a cash register. An input is the field's text, a line end and what is typed.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "fuzz/Target.h"
#include "orlixkit/checkout/AmountEntry.h"
#include "orlixkit/widgets/DecimalDigits.h"

namespace orlix::fuzz {

namespace {

__extension__ using Wide = __int128;
constexpr Wide kMost = std::numeric_limits<std::int64_t>::max();

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isAmount(std::string_view text) {
  if (text.starts_with('-')) {
    text.remove_prefix(1);
  }
  return text.size() >= 4 && text[text.size() - 3] == '.' &&
         std::count_if(text.begin(), text.end(), isDigit) ==
             static_cast<std::ptrdiff_t>(text.size() - 1) &&
         (text.size() == 4 || text[0] != '0');
}

Wide size(std::int64_t cents) { return cents < 0 ? -Wide{cents} : Wide{cents}; }

/// As far as a double is exact, the text is worth what the C++ library reads in it.
void isWorthItsNumber(std::string_view text, std::int64_t cents) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool plain = error == std::errc() && std::isfinite(number) && std::fabs(number) < 1e12;
  // It takes "inf" and "nan", and the exponent only as a whole; both begin with no digit or end so.
  if (plain && end != text.data() && !text.empty() && text[0] != 'i' && text[0] != 'n') {
    check(std::fabs(static_cast<double>(cents) - number * 100) <= 0.52,
          "an amount is worth what its text says, to half a cent");
  }
}

/// The cents with the digits behind them, as far as they fit.
Wide typed(Wide cents, const std::string& digits) {
  for (const char digit : digits) {
    const Wide longer = cents * 10 + (digit - '0');
    cents = longer <= kMost && cents >= -kMost / 10 ? longer : cents;
  }
  return cents;
}

}  // namespace

void amount(ByteView input) {
  std::string_view rest = textOf(input);
  const std::string_view current = takeLine(rest);
  const std::int64_t cents = AmountEntry::centsOf(current);
  isWorthItsNumber(current, cents);
  const std::string shown = AmountEntry::textOf(cents);
  check(isAmount(shown) && AmountEntry::centsOf(shown) == cents, "an amount reads back");

  const std::string deleted = AmountEntry::textAfter(current, "");
  check(isAmount(deleted) && size(AmountEntry::centsOf(deleted)) <= size(cents),
        "a deletion never makes the amount larger");
  if (rest.empty()) {
    return;
  }
  const std::string after = AmountEntry::textAfter(current, rest);
  const std::string digits = decimalDigitsOf(rest);
  const std::int64_t afterCents = AmountEntry::centsOf(after);
  check(isAmount(after), "a field that was typed into holds an amount");
  check(Wide{afterCents} == typed(cents, digits), "every digit that fits counts, and nothing else");
  check(cents < 0 || afterCents >= cents, "typing never makes an amount smaller");
  if (digits.size() == 1 && cents >= 0 && afterCents != cents) {
    check(AmountEntry::textAfter(after, "") == shown, "a deletion takes the last digit back");
  }
}

}  // namespace orlix::fuzz
