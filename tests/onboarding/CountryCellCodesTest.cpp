#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/onboarding/CountryCellCodes.h"
#include "orlixkit/onboarding/PropertyList.h"
#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/resources/CompiledBundle.h"

namespace orlix {
namespace {

std::string listOf(const std::string& strings) {
  return "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><array>" + strings + "</array></plist>\n";
}

std::vector<std::string> read(const std::string& text) { return readStringArray(toBytes(text)); }

TEST(PropertyList, GivesItsStrings) {
  EXPECT_EQ(read(listOf("")), std::vector<std::string>{});
  EXPECT_EQ(read(listOf("<string>A</string>\n<!-- b --><string>&amp;&lt;&gt;&apos;&quot;é"
                        "</string><string></string>")),
            (std::vector<std::string>{"A", "&<>'\"é", ""}));
  EXPECT_EQ(read("\xEF\xBB\xBF<!DOCTYPE plist SYSTEM \"x\"><plist><array> "
                 "<string>A</string> </array> </plist> <!-- end -->"),
            std::vector<std::string>{"A"});
}

TEST(PropertyList, RefusesEverythingElseAsAWhole) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"empty", ""},
      {"binary", std::string("bplist00\0\x01", 10)},
      {"a dictionary", "<plist><dict></dict></plist>"},
      {"a number among the strings", listOf("<string>A</string><integer>1</integer>")},
      {"an element inside a string", listOf("<string>A<b>c</b></string>")},
      {"an unknown entity", listOf("<string>&eacute;</string>")},
      {"a lone ampersand", listOf("<string>A & B</string>")},
      {"text between the strings", listOf("<string>A</string>B")},
      {"no end", "<plist><array><string>A</string>"},
      {"a string without end", "<plist><array><string>A"},
      {"more behind the end", listOf("<string>A</string>") + "<plist>"},
      {"an open comment", listOf("<!-- ")},
      {"declarations of its own",
       "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><array></array></plist>"},
  };
  for (const auto& [name, text] : rows) {
    EXPECT_THROW(read(text), std::invalid_argument) << name;
  }
  const std::string whole = listOf("<string>A,B,1</string><string>C,D,2</string>");
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    EXPECT_THROW(read(whole.substr(0, length)), std::invalid_argument) << "cut at " << length;
  }
}

class CountryList : public testing::Test {
 protected:
  void setList(const std::string& text) {
    host.bundle().add("CountryCellCodes", "plist", toBytes(text));
  }

  MemoryHost host;
};

TEST_F(CountryList, IsEmptyWithALogLineWhenMissingOrCorrupt) {
  EXPECT_TRUE(loadCountryCellCodes().empty());
  EXPECT_TRUE(host.log().contains("list of countries is missing"));
  setList("<plist>");
  EXPECT_TRUE(loadCountryCellCodes().empty());
  EXPECT_TRUE(host.log().contains("list of countries is corrupt"));
}

TEST_F(CountryList, LeavesOutAnEntryThatCannotBeRead) {
  setList(
      listOf("<string>A,AA,1</string><string>B,BB</string><string>C,CC,</string>"
             "<string>D,DD,+4</string><string>E,EE,5,more</string><string></string>"));
  const auto rows = loadCountryCellCodes();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].name + rows[0].isoCode + rows[0].code, "AAA1");
  EXPECT_EQ(rows[1].name + rows[1].isoCode + rows[1].code, "EEE5");
  EXPECT_EQ(host.log().count("has an entry that cannot be read"), 4U);
}

TEST(CountryCode, IsThatOfTheLastRowThatBeginsTheNumber) {
  const CountryCellCode one{"", "", "1"};
  const CountryCellCode trinidad{"", "", "1868"};
  const CountryCellCode southAfrica{"", "", "27"};
  struct Row {
    std::string name;
    std::string number;
    std::vector<CountryCellCode> rows;
    std::optional<std::string> expected;
  };
  const std::vector<Row> rows{
      {"the longer code last", "+18681234567", {one, trinidad}, "1868"},
      {"the shorter code last", "+18681234567", {trinidad, one}, "1"},
      {"the longer does not match", "+18691234567", {one, trinidad}, "1"},
      {"without plus", "18681234567", {one, trinidad}, {}},
      {"no match", "+44770", {one, southAfrica}, {}},
      {"shorter than the code", "+186", {trinidad}, {}},
      {"nothing but the code", "+27", {southAfrica}, "27"},
      {"a lone plus", "+", {one}, {}},
      {"empty", "", {one}, {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(countryCodeOf(row.number, row.rows), row.expected) << row.name;
  }
}

/// The list that the library comes with.
class ShippedCountryList : public CountryList {
 protected:
  ShippedCountryList() {
    host.bundle().add("CountryCellCodes", "plist",
                      CompiledBundle().resource("CountryCellCodes", "plist").value());
  }
};

TEST_F(ShippedCountryList, FindsTheCodeOfAPrefilledNumber) {
  const auto list = loadCountryCellCodes();
  const std::vector<std::pair<std::string, std::string>> rows{
      {"+27821234567", "27"},   {"+12025550123", "1"},    {"+18681234567", "1868"},
      {"+18761234567", "1876"}, {"+16581234567", "1658"}, {"+18291234567", "1829"},
      {"+79161234567", "7"},    {"+77012345678", "7"},    {"+447700900123", "44"},
      {"+447797712345", "44"},  {"+35845123456", "358"},  {"+390612345678", "39"},
      {"+2625212345", "262"},   {"+5999123456", "599"},   {"+38344123456", "383"},
      {"+970599123456", "970"}, {"+971501234567", "971"}, {"+14165550123", "1"},
      {"+13405550123", "1340"}, {"+24712345", "247"},
  };
  for (const auto& [number, code] : rows) {
    EXPECT_EQ(countryCodeOf(number, list), code) << number;
  }
}

TEST_F(ShippedCountryList, NamesEveryRowOnceAndPutsNoCodeBehindOneThatItBegins) {
  const auto list = loadCountryCellCodes();
  EXPECT_EQ(host.log().count("OrlixKit"), 0U) << host.log().text();
  EXPECT_EQ(list.size(), 252U);
  std::set<std::string> shown;
  for (std::size_t i = 0; i < list.size(); ++i) {
    EXPECT_TRUE(shown.insert(list[i].name + list[i].code).second) << list[i].name;
    EXPECT_EQ(list[i].isoCode.size(), 2U) << list[i].name;
    EXPECT_LE(list[i].code.size(), 4U) << list[i].name;
    for (std::size_t j = i + 1; j < list.size(); ++j) {
      const bool hidesTheLonger =
          list[i].code != list[j].code && list[i].code.starts_with(list[j].code);
      EXPECT_FALSE(hidesTheLonger) << list[j].name << " wins over " << list[i].name;
    }
  }
}

TEST(CompiledBundle, HasNothingButItsFiles) {
  EXPECT_FALSE(CompiledBundle().resource("CountryCellCodes", "txt"));
  EXPECT_FALSE(CompiledBundle().resource("Countries", "plist"));
}

}  // namespace
}  // namespace orlix
