// SPDX-License-Identifier: Apache-2.0

#include <chrono>
#include <optional>

#include <gtest/gtest.h>

#include "orlixkit/onboarding/CardDates.h"
#include "orlixkit/onboarding/Msisdn.h"
#include "orlixkit/onboarding/OXAddCardViewController.h"

namespace orlix::test {

TEST(Msisdn, BecomesInternationalHoweverItIsTyped) {
  struct Case {
    std::string name, countryCode, typed, expected;
  };
  const std::vector<Case> rows{
      {"nothing", "27", "", ""},
      {"national", "27", "082 123 4567", "27821234567"},
      {"international", "27", "+27 82 123 4567", "27821234567"},
      {"with two zeros", "27", "0027821234567", "27821234567"},
      {"code and trunk zero", "27", "270821234567", "27821234567"},
      {"code and trunk zero behind a plus", "27", "+27 (0)82 123 4567", "27821234567"},
      {"without zero and code", "27", "821234567", "27821234567"},
      {"a national number that begins like the code", "27", "0271234567", "27271234567"},
      {"the trunk zero is dropped once for 27 only", "44", "4407700900123", "4407700900123"},
      {"another country", "44", "07700 900123", "447700900123"},
      {"another country with two zeros", "44", "00 44 7700 900123", "447700900123"},
      {"two zeros and no code", "44", "007700900123", "447700900123"},
      {"many zeros", "27", "000082123", "2782123"},
      {"no code at all", "", "082 123 4567", "821234567"},
      {"a code that is no number", "x", "+27821234567", "27821234567"},
      {"a code with a plus", "+27", "0821234567", "27821234567"},
      {"letters and blanks between", "27", "call 082-one-123.4567", "27821234567"},
      {"letters only", "27", "nobody", "27"},
      {"one zero", "27", "0", "27"},
      {"only zeros", "27", "0000000000", "27"},
      {"only zeros and no code", "", "0000", ""},
      {"full-width digits", "27", "０８２ １２３ ４５６７", "27821234567"},
      {"a full-width plus", "27", "＋２７８２１２３４５６７", "27821234567"},
      {"forty digits", "27", std::string(40, '8'), "27" + std::string(40, '8')},
      {"a stray byte", "27", "082\xFF-1234567", "27821234567"},
  };
  for (const Case& row : rows) {
    EXPECT_EQ(normalizedMsisdn(row.countryCode, row.typed), row.expected) << row.name;
  }
}

TEST(ExpiryDate, IsJudgedByItsTwoNumbersAgainstTheCurrentMonth) {
  struct Case {
    std::string text;
    int year;
    unsigned month;
    bool valid;
  };
  const std::vector<Case> rows{
      {"02/26", 2026, 3, false}, {"03/26", 2026, 3, true},      {"12/26", 2026, 3, true},
      {"12/25", 2026, 3, false}, {"00/40", 2026, 3, true},      {"00/26", 2026, 3, false},
      {"13/30", 2026, 3, false}, {"12/30", 2026, 3, true},      {"-1/30", 2026, 3, false},
      {"+1/30", 2026, 3, true},  {"ab/30", 2026, 3, true},      {"12/ab", 2026, 3, false},
      {"1x/2y", 2026, 3, false}, {"1x/9y", 2108, 1, true},      {"12x30", 2026, 3, true},
      {"1230", 2026, 3, false},  {"1/300", 2026, 3, false},     {"12/300", 2026, 3, false},
      {"", 2026, 3, false},      {"１２/３０", 2026, 3, false}, {"01/00", 2099, 12, false},
      {"12/26", 2026, 12, true}, {"01/26", 2026, 1, true},
  };
  for (const Case& row : rows) {
    const auto now = std::chrono::year(row.year) / std::chrono::month(row.month);
    EXPECT_EQ(isExpiryDateValid(row.text, now), row.valid) << row.text << " in " << row.year;
  }
}

TEST(DateOfBirth, IsReorderedWhenItHasTenCharactersWhateverTheyAre) {
  const std::vector<std::pair<std::string, std::optional<std::string>>> rows{
      {"31/12/1999", "1999-12-31"},
      {"éé/ßß/１２３４", "１２３４-ßß-éé"},
      {"31/12/199", {}},
      {"", {}}};
  for (const auto& [text, reordered] : rows) {
    EXPECT_EQ(dateOfBirthFromYear(text, "-"), reordered);
    EXPECT_EQ(OXAddCardViewController::isValidDateOfBirth(text), reordered.has_value());
  }
}

}  // namespace orlix::test
