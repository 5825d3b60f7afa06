// SPDX-License-Identifier: Apache-2.0

#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "orlixkit/onboarding/CountryCellCodes.h"
#include "orlixkit/onboarding/PropertyList.h"
#include "orlixkit/resources/CompiledBundle.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix::test {

namespace {

std::string listOf(const std::string& strings) {
  return "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><array>" + strings + "</array></plist>\n";
}

std::vector<std::string> read(const std::string& text) { return readStringArray(toBytes(text)); }

}  // namespace

TEST(PropertyList, RefusesEverythingElseAsAWhole) {
  for (const std::string& text :
       {std::string("bplist00\0\x01", 10), std::string("<plist><dict></dict></plist>"),
        listOf("<string>A</string><integer>1</integer>"), listOf("<string>A<b>c</b></string>"),
        listOf("<string>&eacute;</string>"), listOf("<string>A & B</string>"),
        listOf("<string>A</string>B"), listOf("<string>A</string>") + "<plist>", listOf("<!-- "),
        "<!DOCTYPE plist [<!ENTITY a \"b\">]>" + listOf("")}) {
    EXPECT_THROW(read(text), std::invalid_argument) << text;
  }
  const std::string whole = listOf("<string>A,B,1</string><string>C,D,2</string>");
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    EXPECT_THROW(read(whole.substr(0, length)), std::invalid_argument) << "cut at " << length;
  }
}

TEST(CountryList, LeavesOutAnEntryThatCannotBeReadAndIsEmptyWhenCorrupt) {
  MemoryHost host;
  host.bundle().add("CountryCellCodes", "plist",
                    toBytes(listOf("<string>A</string><string>B,BB</string><string>C,CC,</string>"
                                   "<string>D,DD,+4</string><string>E,EE,5,more</string>")));
  const auto rows = loadCountryCellCodes();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].name + rows[0].isoCode + rows[0].code, "EEE5");
  EXPECT_EQ(host.log().count("has an entry that cannot be read"), 4U);
  host.bundle().add("CountryCellCodes", "plist", toBytes("<plist>"));
  EXPECT_TRUE(loadCountryCellCodes().empty());
  EXPECT_TRUE(host.log().contains("list of countries is corrupt"));
}

TEST(CountryCode, IsThatOfTheLastRowThatBeginsTheNumber) {
  const CountryCellCode one{"", "", "1"};
  const CountryCellCode trinidad{"", "", "1868"};
  struct Case {
    std::string number;
    std::vector<CountryCellCode> rows;
    std::optional<std::string> expected;
  };
  for (const Case& row : std::vector<Case>{{"+18681234567", {one, trinidad}, "1868"},
                                           {"+18681234567", {trinidad, one}, "1"},
                                           {"+18691234567", {one, trinidad}, "1"},
                                           {"18681234567", {one, trinidad}, {}},
                                           {"+44770", {one, trinidad}, {}},
                                           {"+186", {trinidad}, {}},
                                           {"+1868", {trinidad}, "1868"},
                                           {"+", {one}, {}},
                                           {"", {one}, {}}}) {
    EXPECT_EQ(countryCodeOf(row.number, row.rows), row.expected) << row.number;
  }
}

TEST(ShippedCountryList, FindsTheCodeOfAPrefilledNumberAndPutsNoCodeBehindOneThatItBegins) {
  MemoryHost host;
  host.bundle().add("CountryCellCodes", "plist",
                    CompiledBundle().resource("CountryCellCodes", "plist").value());
  const auto list = loadCountryCellCodes();
  EXPECT_EQ(host.log().count("OrlixKit"), 0U) << host.log().text();
  EXPECT_EQ(list.size(), 252U);
  std::set<std::string> shown;
  for (std::size_t i = 0; i < list.size(); ++i) {
    EXPECT_TRUE(shown.insert(list[i].name + list[i].code).second) << list[i].name;
    EXPECT_EQ(list[i].isoCode.size(), 2U) << list[i].name;
    EXPECT_LE(list[i].code.size(), 4U) << list[i].name;
    for (std::size_t j = i + 1; j < list.size(); ++j) {
      EXPECT_TRUE(list[i].code == list[j].code || !list[i].code.starts_with(list[j].code))
          << list[j].name << " wins over " << list[i].name;
    }
  }
  const std::vector<std::pair<std::string, std::string>> rows{
      {"+27821234567", "27"},   {"+12025550123", "1"},   {"+18681234567", "1868"},
      {"+16581234567", "1658"}, {"+77012345678", "7"},   {"+447700900123", "44"},
      {"+35845123456", "358"},  {"+38344123456", "383"}, {"+24712345", "247"}};
  for (const auto& [number, code] : rows) {
    EXPECT_EQ(countryCodeOf(number, list), code) << number;
  }
  EXPECT_FALSE(CompiledBundle().resource("Countries", "plist"));
}

}  // namespace orlix::test
