// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/CardDates.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "orlixkit/host/Host.h"
#include "orlixkit/ports/Utf8.h"

namespace orlix {

namespace {

std::string slice(const std::vector<std::string_view>& characters, std::size_t from,
                  std::size_t count) {
  std::string joined;
  for (std::size_t i = from; i < from + count; ++i) {
    joined += characters[i];
  }
  return joined;
}

/// The number at the beginning of two characters, after white space or a sign; 0 when there is
/// none.
int leadingInteger(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  if (text.starts_with('+')) {
    text.remove_prefix(1);
  }
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

std::optional<ExpiryDate> splitExpiryDate(std::string_view text) {
  const std::vector<std::string_view> characters = charactersOf(text);
  if (characters.size() != 5) {
    return std::nullopt;
  }
  return ExpiryDate{slice(characters, 0, 2), slice(characters, 3, 2)};
}

bool isExpiryDateValid(std::string_view text, std::chrono::year_month now) {
  const std::optional<ExpiryDate> date = splitExpiryDate(text);
  if (!date) {
    return false;
  }
  const int month = leadingInteger(date->month);
  const int year = leadingInteger(date->year);
  // Month 0 is accepted here; the server validates it.
  if (month < 0 || month > 12) {
    return false;
  }
  const int currentYear = static_cast<int>(now.year()) % 100;
  if (currentYear != year) {
    return currentYear < year;
  }
  return static_cast<int>(static_cast<unsigned>(now.month())) <= month;
}

std::optional<std::string> dateOfBirthFromYear(std::string_view text, std::string_view separator) {
  const std::vector<std::string_view> characters = charactersOf(text);
  if (characters.size() != 10) {
    return std::nullopt;
  }
  const std::string between(separator);
  return slice(characters, 6, 4) + between + slice(characters, 3, 2) + between +
         slice(characters, 0, 2);
}

std::chrono::year_month currentMonth() {
  const Ports& ports = Host::current().ports();
  const CalendarTime now = ports.clock->now();
  const std::chrono::year_month_day today(
      std::chrono::floor<std::chrono::days>(now + ports.device->utcOffset(now)));
  return today.year() / today.month();
}

}  // namespace orlix
