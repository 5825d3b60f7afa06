// SPDX-License-Identifier: Apache-2.0

#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "orlixkit/ports/Utf8.h"
#include "orlixkit/widgets/CardNumberField.h"
#include "orlixkit/widgets/DecimalDigits.h"
#include "orlixkit/widgets/FormattedTextField.h"

namespace orlix {
namespace {

void type(TextField& field, std::string_view keys) {
  for (const std::string_view key : charactersOf(keys)) {
    field.replaceCharacters({field.caret(), 0}, std::string(key));
  }
}

/// The text with a bar at the caret.
std::string shown(const TextField& field) {
  std::string text = field.text();
  std::size_t offset = 0;
  const auto characters = charactersOf(text);
  for (std::size_t i = 0; i < field.caret(); ++i) {
    offset += characters[i].size();
  }
  return text.insert(offset, "|");
}

constexpr std::size_t kBeyond = static_cast<std::size_t>(-1);

/// The keys typed one by one, then `replacement` put over `range`.
struct Row {
  const char* name;
  const char* keys;
  TextRange range;
  const char* replacement;
  const char* expected;
};

constexpr TextRange kNone{kBeyond, 0};

TEST(FormattedTextField, SetsItsSlashesAndKeepsTheCaretWhereTheUserLeftIt) {
  const Row rows[] = {
      {"no slash before it separates", "31", kNone, "", "31|"},
      {"slashes while typing", "31121999", kNone, "", "31/12/1999|"},
      {"typed slashes are ours anyway", "31/12/1999", kNone, "", "31/12/1999|"},
      {"letters are left out", "3a1-1x2", kNone, "", "31/12|"},
      {"a full field takes no more", "311219998", kNone, "", "31/12/1999|"},
      {"pasted at once", "", {0, 0}, "31.12.1999 and more 7", "31/12/1999|"},
      {"full-width digits are digits", "３１１２", kNone, "", "31/12|"},
      {"a digit in the middle moves the rest on", "3112", {1, 0}, "0", "30|/11/2"},
      {"a full field keeps what it has", "31121999", {1, 0}, "0", "3|1/12/1999"},
      {"backspace at the end", "311", {3, 1}, "", "31|"},
      {"backspace over a slash takes the digit before it", "3112", {2, 1}, "", "3|1/2"},
      {"a selection over a slash", "31121999", {1, 3}, "", "3|2/19/99"},
      {"a selection is replaced", "31121999", {0, 2}, "05", "05|/12/1999"},
      {"a letter over a selection changes nothing", "3112", {0, 2}, "x", "31/12|"},
      {"a selection far beyond the text", "3112", {1, kBeyond}, "", "3|"},
      {"a place far beyond the text", "31", {kBeyond, 0}, "1", "31/1|"},
      {"a selection far beyond the text", "31", {kBeyond, 1}, "1", "31/1|"},
  };
  for (const Row& row : rows) {
    const auto field = std::make_shared<FormattedTextField>();
    field->setPattern("XX/XX/XXXX");
    type(*field, row.keys);
    field->replaceCharacters(row.range, row.replacement);
    EXPECT_EQ(shown(*field), row.expected) << row.name;
  }
}

TEST(FormattedTextField, DeleteBeforeASlashTakesTheDigitAfterIt) {
  const auto field = std::make_shared<FormattedTextField>();
  field->setPattern("XX/XX/XXXX");
  for (const char* text : {"3145", "31/45"}) {
    field->setText(text);
    field->setCaret(2);
    field->replaceCharacters({2, 1}, "");
    EXPECT_EQ(shown(*field), "31|/5");
  }
}

TEST(FormattedTextField, LaysItsDigitsOutAnewForAnotherPattern) {
  const auto field = std::make_shared<FormattedTextField>();
  type(*field, "123456");
  EXPECT_EQ(field->text(), "123456") << "without a pattern";
  field->setPattern("XX/XX");
  EXPECT_EQ(field->text(), "12/34");
  EXPECT_EQ(field->content().text(), "1234");
}

TEST(CardNumberField, KnowsTheBrandByTheFirstDigits) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},       {"4", "visa"},   {"4000 1", "visa"}, {"5", "orbis"}, {"3", ""},
      {"34", "amex"}, {"3 7", "amex"}, {"36", ""},         {"6", ""},      {"x4", ""}};
  for (const auto& [digits, brand] : rows) {
    const auto field = std::make_shared<CardNumberField>();
    field->setText(digits);
    EXPECT_EQ(field->brand(), brand) << digits;
  }
}

TEST(CardNumberField, GroupsInFoursAndKeepsTheCaretWhereTheUserLeftIt) {
  const Row rows[] = {
      {"four digits", "4000", kNone, "", "4000|"},
      {"the fifth opens a group", "40001", kNone, "", "4000 1|"},
      {"nineteen", "4000123412341234567", kNone, "", "4000 1234 1234 1234 567|"},
      {"typed blanks are ours anyway", "40 00 12", kNone, "", "4000 12|"},
      {"letters are not for the field to judge", "ABCDEF", kNone, "", "ABCD EF|"},
      {"characters, not bytes", "éééé４", kNone, "", "éééé ４|"},
      {"a digit in the middle", "40001234", {2, 0}, "9", "409|0 0123 4"},
      {"a digit at the end of a group goes behind the blank",
       "40001234",
       {4, 0},
       "9",
       "4000 9|123 4"},
      {"the group closes when its last digit goes", "40001", {5, 1}, "", "4000|"},
  };
  for (const Row& row : rows) {
    const auto field = std::make_shared<CardNumberField>();
    type(*field, row.keys);
    field->replaceCharacters(row.range, row.replacement);
    EXPECT_EQ(shown(*field), row.expected) << row.name;
  }
  const auto field = std::make_shared<CardNumberField>();
  field->setText(" 4000 12341234 12 34");
  EXPECT_EQ(field->text(), "4000 1234 1234 1234");
  field->setCaret(5);
  field->replaceCharacters({4, 1}, "");
  EXPECT_EQ(shown(*field), "400|1 2341 2341 234") << "over a blank: the digit before it";
  EXPECT_EQ(field->number().text(), "400123412341234");
}

TEST(DecimalDigits, AreTakenFromAnyScriptAndWrittenAsZeroToNine) {
  const std::pair<const char*, const char*> rows[] = {
      {"+27 (82) 123-4567 ext", "27821234567"},
      {"０８２١٢٣", "082123"},
      {"\U0001D7CE\U0001D7D7", "09"},
      {"²½Ⅷ①", ""},
      {"\uFF0F\uFF1A/:", ""},
      {"1\xEF\xBC"
       "2\xF0\x9D\x9F",
       "12"},
      {"\x80\xFF"
       "7\xC2",
       "7"},
  };
  for (const auto& [text, digits] : rows) {
    EXPECT_EQ(decimalDigitsOf(text), digits) << text;
  }
}

}  // namespace
}  // namespace orlix
