#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orlix {

/// The dates on a card form: "MM/YY" for the expiry, "DD/MM/YYYY" for a date of birth. Positions
/// are counted in characters; what the characters are is looked at only where it says so.

/// Month and year of an expiry date, two characters each; the rest is left out.
struct ExpiryDate {
  std::string month;
  std::string year;
};
/// None unless the text has exactly five characters.
std::optional<ExpiryDate> splitExpiryDate(std::string_view text);

/// True when a card with this expiry date can still be used in the month `now`.
bool isExpiryDateValid(std::string_view text, std::chrono::year_month now);

/// Year, month and day of a date of birth, joined by `separator`. None unless the text has exactly
/// ten characters.
std::optional<std::string> dateOfBirthFromYear(std::string_view text, std::string_view separator);

/// The month that the device's calendar shows.
std::chrono::year_month currentMonth();

}  // namespace orlix
