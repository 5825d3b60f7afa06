// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orlix {

/// The dates on a card form: "MM/YY" for the expiry, "DD/MM/YYYY" for a date of birth. Positions
/// are counted in characters; the characters are validated only where stated.

/// Month and year of an expiry date, two characters each, without the separator.
struct ExpiryDate {
  std::string month;
  std::string year;
};
/// Absent unless the text has exactly five characters.
std::optional<ExpiryDate> splitExpiryDate(std::string_view text);

/// Whether a card with this expiry date is still valid in the month `now`.
bool isExpiryDateValid(std::string_view text, std::chrono::year_month now);

/// Year, month and day of a date of birth, joined by `separator`. Absent unless the text has
/// exactly ten characters.
std::optional<std::string> dateOfBirthFromYear(std::string_view text, std::string_view separator);

/// The current month in the device's local time.
std::chrono::year_month currentMonth();

}  // namespace orlix
