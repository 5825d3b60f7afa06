// SPDX-License-Identifier: Apache-2.0

// Dates on a card form. An input is a date, a line end, and what separates a date of birth.

#include <algorithm>
#include <chrono>
#include <string>

#include "fuzz/Target.h"
#include "orlixkit/onboarding/CardDates.h"
#include "orlixkit/ports/Utf8.h"

namespace orlix::fuzz {

namespace {

using std::chrono::months;
using std::chrono::year;
using std::chrono::year_month;

bool isNumber(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

void expires(std::string_view text) {
  const auto characters = charactersOf(text);
  const auto date = splitExpiryDate(text);
  check(date.has_value() == (characters.size() == 5), "an expiry date has five characters");
  check(!date || date->month + std::string(characters[2]) + date->year == text,
        "month and year are what stands around the middle");
  if (!date) {
    check(!isExpiryDateValid(text, year{2019} / 12), "what is no date has expired");
    return;
  }
  bool usable = true;
  for (year_month now = year{2019} / 12; now <= year{2036} / 2; now += months{1}) {
    const bool stillUsable = isExpiryDateValid(text, now);
    check(usable || !stillUsable, "what has expired stays expired");
    if (isNumber(date->month + date->year)) {
      const int month = std::stoi(date->month);
      const year_month last =
          year{2000 + std::stoi(date->year)} / std::chrono::month{static_cast<unsigned>(month)};
      check(stillUsable == (month <= 12 && now <= last), "a card is usable up to its month");
    }
    usable = stillUsable;
  }
}

void birth(std::string_view text, std::string_view separator) {
  const auto characters = charactersOf(text);
  const auto turned = dateOfBirthFromYear(text, separator);
  check(turned.has_value() == (characters.size() == 10), "a date of birth has ten characters");
  if (turned) {
    std::string expected;
    for (const unsigned i : {6U, 7U, 8U, 9U}) {
      expected += characters[i];
    }
    expected += separator;
    expected += characters[3];
    expected += characters[4];
    expected += separator;
    expected += characters[0];
    expected += characters[1];
    check(*turned == expected, "year, month and day, as they were typed");
  }
}

}  // namespace

void dates(ByteView input) {
  std::string_view rest = textOf(input);
  const std::string_view date = takeLine(rest);
  expires(date);
  birth(date, rest);
}

}  // namespace orlix::fuzz
