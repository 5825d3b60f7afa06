// SPDX-License-Identifier: Apache-2.0

// Mobile numbers as hosts and users write them. An input is a country code, a line end, a number.

#include <algorithm>
#include <string>

#include "fuzz/Target.h"
#include "orlixkit/checkout/SuggestedMsisdn.h"
#include "orlixkit/onboarding/Msisdn.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/widgets/DecimalDigits.h"

namespace orlix::fuzz {

namespace {

bool isDigits(std::string_view text) {
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string withoutZeros(std::string digits) {
  std::erase(digits, '0');
  return digits;
}

/// Only zeros are ever taken from a number, and only `code` is ever put in front: anything else
/// would be another phone's number.
void isNumberOf(const std::string& result, const std::string& digits, const std::string& code) {
  check(isDigits(result), "a number is digits");
  const std::string significant = withoutZeros(result);
  check(significant == withoutZeros(digits) || significant == withoutZeros(code + digits),
        "a number keeps its digits, behind its country's code");
  const std::size_t first = std::min(digits.find_first_not_of('0'), digits.size());
  check(result.size() + 1 >= digits.size() - first, "at most the trunk zero goes");
  check(result.size() <= code.size() + digits.size() - first, "nothing but the code is added");
}

/// Characters are views that together are the text.
void fallApart(std::string_view text) {
  std::string_view rest = text;
  for (const std::string_view character : charactersOf(text)) {
    check(!character.empty() && character.size() <= 4 && character.data() == rest.data(),
          "the characters are the text");
    rest.remove_prefix(character.size());
  }
  check(rest.empty(), "the characters are the whole text");
}

}  // namespace

void numbers(ByteView input) {
  std::string_view number = textOf(input);
  const std::string_view countryCode = takeLine(number);
  fallApart(number);
  const std::string digits = decimalDigitsOf(number);
  check(isDigits(digits) && decimalDigitsOf(digits) == digits, "decimal digits are 0 to 9");

  const std::string suggested = suggestedMsisdn(number);
  check(suggested.starts_with('+') != number.empty(), "a suggestion begins with a plus");
  if (!suggested.empty()) {
    isNumberOf(suggested.substr(1), digits, "27");
    const bool national = digits.starts_with('0') && !digits.starts_with("00");
    check(!national || suggested.starts_with("+27"), "a national number is given the code");
    // A number without digits has no international form.
    check(digits.empty() || suggestedMsisdn(digits) == suggested, "only the digits count");
  }

  const std::string code = decimalDigitsOf(countryCode);
  const std::string normalized = normalizedMsisdn(countryCode, number);
  check(!number.empty() || normalized.empty(), "no number stays no number");
  if (!number.empty()) {
    isNumberOf(normalized, digits, code);
    check(normalized.starts_with(code), "a number has its country's code");
    check(digits.empty() || normalizedMsisdn(code, digits) == normalized, "only the digits count");
  }
}

}  // namespace orlix::fuzz
