#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/onboarding/CardDates.h"
#include "orlixkit/onboarding/Msisdn.h"
#include "orlixkit/onboarding/OXAddCardViewController.h"
#include "orlixkit/onboarding/OXCardValidationViewController.h"

namespace orlix {
namespace {

using std::chrono::month;
using std::chrono::year;
using std::chrono::year_month;

TEST(Msisdn, BecomesInternationalHoweverItIsTyped) {
  struct Row {
    std::string name;
    std::string countryCode;
    std::string typed;
    std::string expected;
  };
  const std::vector<Row> rows{
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
      {"a stray byte", "27",
       "082\xFF"
       "1234567",
       "27821234567"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(normalizedMsisdn(row.countryCode, row.typed), row.expected) << row.name;
  }
}

TEST(ExpiryDate, IsJudgedByItsTwoNumbersAgainstTheCurrentMonth) {
  struct Row {
    std::string name;
    std::string text;
    year_month now;
    bool valid;
  };
  const year_month march2026 = year(2026) / month(3);
  const std::vector<Row> rows{
      {"last month", "02/26", march2026, false},
      {"this month", "03/26", march2026, true},
      {"later this year", "12/26", march2026, true},
      {"last year", "12/25", march2026, false},
      {"month 0 of another year", "00/40", march2026, true},
      {"month 0 of this year", "00/26", march2026, false},
      {"month 13", "13/30", march2026, false},
      {"month 12", "12/30", march2026, true},
      {"a negative month", "-1/30", march2026, false},
      {"a month with a sign", "+1/30", march2026, true},
      {"letters read as month 0", "ab/30", march2026, true},
      {"letters read as year 0", "12/ab", march2026, false},
      {"a digit and a letter", "1x/2y", march2026, false},
      {"a digit and a letter, later", "1x/9y", year(2108) / month(1), true},
      {"whatever stands between", "12x30", march2026, true},
      {"four characters", "1230", march2026, false},
      {"six characters", "12/300", march2026, false},
      {"empty", "", march2026, false},
      {"five characters of many bytes", "１２/３０", march2026, false},
      {"the century turns", "01/00", year(2099) / month(12), false},
      {"in December", "12/26", year(2026) / month(12), true},
      {"in January", "01/26", year(2026) / month(1), true},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(isExpiryDateValid(row.text, row.now), row.valid) << row.name;
  }
}

TEST(DateOfBirth, IsReorderedWhenItHasTenCharactersWhateverTheyAre) {
  struct Row {
    std::string name;
    std::string text;
    std::optional<std::string> forTheBackend;
    std::optional<std::string> runTogether;
  };
  const std::vector<Row> rows{
      {"a date", "31/12/1999", "1999-12-31", "19991231"},
      {"no such date", "99/99/9999", "9999-99-99", "99999999"},
      {"letters", "ab-cd-efgh", "efgh-cd-ab", "efghcdab"},
      {"characters of many bytes", "éé/ßß/１２３４", "１２３４-ßß-éé", "１２３４ßßéé"},
      {"nine characters", "31/12/199", {}, {}},
      {"eleven characters", "31/12/19999", {}, {}},
      {"empty", "", {}, {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(OXCardValidationViewController::formatDobForBackend(row.text), row.forTheBackend)
        << row.name;
    EXPECT_EQ(dateOfBirthFromYear(row.text, ""), row.runTogether) << row.name;
    EXPECT_EQ(OXAddCardViewController::isValidDateOfBirth(row.text), row.runTogether.has_value())
        << row.name;
  }
}

TEST(CardNumber, IsMeasuredNotChecked) {
  EXPECT_FALSE(OXAddCardViewController::isValidLuhn("400000000000000"));
  EXPECT_TRUE(OXAddCardViewController::isValidLuhn("4000000000000000"));
  EXPECT_TRUE(OXAddCardViewController::isValidLuhn("abcdefghijklmnop"));
}

}  // namespace
}  // namespace orlix
