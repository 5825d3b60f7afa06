// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/Msisdn.h"

#include <algorithm>

#include "orlixkit/widgets/DecimalDigits.h"

namespace orlix {

std::string normalizedMsisdn(std::string_view countryCode, std::string_view number) {
  if (number.empty()) {
    return {};
  }
  std::string digits = decimalDigitsOf(number);
  const std::string code = decimalDigitsOf(countryCode);
  const bool hasTrunkZero = digits.starts_with('0') && !digits.starts_with("00");
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
  if (code == "27" && digits.starts_with("270")) {
    // The country code followed by the trunk zero, as South African users often write it.
    digits.erase(2, 1);
  }
  const bool needsCode = hasTrunkZero || !digits.starts_with(code);
  return needsCode ? code + digits : digits;
}

}  // namespace orlix
