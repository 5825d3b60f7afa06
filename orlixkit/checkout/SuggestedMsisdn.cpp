// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/SuggestedMsisdn.h"

#include "orlixkit/widgets/DecimalDigits.h"

namespace orlix {

namespace {

constexpr std::string_view kCountryCode = "27";
constexpr std::string_view kCountryCodeWithTrunkZero = "270";

std::string withoutLeadingZeros(const std::string& digits) {
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos ? std::string() : digits.substr(first);
}

}  // namespace

std::string suggestedMsisdn(std::string_view number) {
  if (number.empty()) {
    return {};
  }
  const std::string digits = decimalDigitsOf(number);
  if (digits.starts_with("00")) {
    return "+" + withoutLeadingZeros(digits);
  }
  const bool national = digits.starts_with("0");
  const bool withTrunkZero = digits.starts_with(kCountryCodeWithTrunkZero);
  if (!national && !withTrunkZero) {
    return "+" + digits;
  }
  std::string rest = withoutLeadingZeros(digits);
  if (rest.starts_with(kCountryCodeWithTrunkZero)) {
    rest.erase(kCountryCode.size(), 1);
  }
  return (national ? "+27" : "+") + rest;
}

}  // namespace orlix
