#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/widgets/CardNumberField.h"
#include "orlixkit/widgets/Characters.h"
#include "orlixkit/widgets/FormattedTextField.h"

namespace orlix {
namespace {

void type(TextField& field, std::string_view keys) {
  for (const std::string_view key : charactersOf(keys)) {
    field.replaceCharacters({field.caret(), 0}, std::string(key));
  }
}

void backspace(TextField& field) { field.replaceCharacters({field.caret() - 1, 1}, ""); }
void forwardDelete(TextField& field) { field.replaceCharacters({field.caret(), 1}, ""); }

/// The text with a bar where the caret stands.
std::string shown(const TextField& field) {
  std::string text = field.text();
  std::size_t offset = 0;
  const auto characters = charactersOf(text);
  for (std::size_t i = 0; i < field.caret(); ++i) {
    offset += characters[i].size();
  }
  return text.insert(offset, "|");
}

template <class Field>
struct Row {
  std::string name;
  std::function<void(Field&)> doing;
  std::string expected;
};

using DateRow = Row<FormattedTextField>;

TEST(FormattedTextField, SetsItsSlashesAndKeepsTheCaretWhereTheUserLeftIt) {
  const std::vector<DateRow> rows{
      {"nothing yet", [](auto&) {}, "|"},
      {"no slash before it separates", [](auto& f) { type(f, "31"); }, "31|"},
      {"slashes while typing", [](auto& f) { type(f, "31121999"); }, "31/12/1999|"},
      {"typed slashes are ours anyway", [](auto& f) { type(f, "31/12/1999"); }, "31/12/1999|"},
      {"letters are left out", [](auto& f) { type(f, "3a1-1x2"); }, "31/12|"},
      {"a full field takes no more", [](auto& f) { type(f, "311219998"); }, "31/12/1999|"},
      {"pasted at once",
       [](auto& f) {
         f.replaceCharacters({0, 0}, "31.12.1999 and more 7");
       },
       "31/12/1999|"},
      {"full-width digits are digits", [](auto& f) { type(f, "３１１２"); }, "31/12|"},
      {"a digit in the middle moves the rest on",
       [](auto& f) {
         type(f, "3112");
         f.setCaret(1);
         type(f, "0");
       },
       "30|/11/2"},
      {"a full field keeps what it has",
       [](auto& f) {
         type(f, "31121999");
         f.setCaret(1);
         type(f, "0");
       },
       "3|1/12/1999"},
      {"backspace at the end",
       [](auto& f) {
         type(f, "311");
         backspace(f);
       },
       "31|"},
      {"backspace over a slash takes the digit before it",
       [](auto& f) {
         type(f, "3112");
         f.setCaret(3);
         backspace(f);
       },
       "3|1/2"},
      {"delete before a slash takes the digit after it",
       [](auto& f) {
         type(f, "3145");
         f.setCaret(2);
         forwardDelete(f);
       },
       "31|/5"},
      {"a selection over a slash",
       [](auto& f) {
         type(f, "31121999");
         f.replaceCharacters({1, 3}, "");
       },
       "3|2/19/99"},
      {"a selection is replaced",
       [](auto& f) {
         type(f, "31121999");
         f.replaceCharacters({0, 2}, "05");
       },
       "05|/12/1999"},
      {"a letter over a selection changes nothing",
       [](auto& f) {
         type(f, "3112");
         f.setCaret(2);
         f.replaceCharacters({0, 2}, "x");
       },
       "31|/12"},
      {"a selection far beyond the text",
       [](auto& f) {
         type(f, "3112");
         f.replaceCharacters({1, std::numeric_limits<std::size_t>::max()}, "");
       },
       "3|"},
      {"a place far beyond the text",
       [](auto& f) {
         type(f, "31");
         f.replaceCharacters({std::numeric_limits<std::size_t>::max(), 0}, "1");
       },
       "31/1|"},
      {"set as digits", [](auto& f) { f.setText("31121999"); }, "31/12/1999|"},
      {"set as it is shown", [](auto& f) { f.setText("31/12/1999"); }, "31/12/1999|"},
      {"set too long", [](auto& f) { f.setText("311219990"); }, "31/12/1999|"},
  };
  for (const DateRow& row : rows) {
    const auto field = std::make_shared<FormattedTextField>();
    field->setPattern("XX/XX/XXXX");
    row.doing(*field);
    EXPECT_EQ(shown(*field), row.expected) << row.name;
  }
}

TEST(FormattedTextField, LaysItsDigitsOutAnewForAnotherPattern) {
  const auto field = std::make_shared<FormattedTextField>();
  type(*field, "123456");
  EXPECT_EQ(field->text(), "123456") << "without a pattern";
  field->setPattern("XX/XX");
  EXPECT_EQ(field->text(), "12/34");
  EXPECT_EQ(field->content(), "1234");
}

using CardRow = Row<CardNumberField>;

TEST(CardNumberField, GroupsInFoursAndKeepsTheCaretWhereTheUserLeftIt) {
  const std::vector<CardRow> rows{
      {"four digits", [](auto& f) { type(f, "4000"); }, "4000|"},
      {"the fifth opens a group", [](auto& f) { type(f, "40001"); }, "4000 1|"},
      {"sixteen", [](auto& f) { type(f, "4000123412341234"); }, "4000 1234 1234 1234|"},
      {"nineteen", [](auto& f) { type(f, "4000123412341234567"); }, "4000 1234 1234 1234 567|"},
      {"typed blanks are ours anyway", [](auto& f) { type(f, "40 00 12"); }, "4000 12|"},
      {"letters are not for the field to judge", [](auto& f) { type(f, "ABCDEF"); }, "ABCD EF|"},
      {"characters, not bytes", [](auto& f) { type(f, "éééé４"); }, "éééé ４|"},
      {"a digit in the middle",
       [](auto& f) {
         type(f, "40001234");
         f.setCaret(2);
         type(f, "9");
       },
       "409|0 0123 4"},
      {"a digit at the end of a group goes on behind the blank",
       [](auto& f) {
         type(f, "40001234");
         f.setCaret(4);
         type(f, "9");
       },
       "4000 9|123 4"},
      {"backspace over a blank takes the digit before it",
       [](auto& f) {
         type(f, "40001234");
         f.setCaret(5);
         backspace(f);
       },
       "400|1 234"},
      {"the group closes when its last digit goes",
       [](auto& f) {
         type(f, "40001");
         backspace(f);
       },
       "4000|"},
  };
  for (const CardRow& row : rows) {
    const auto field = std::make_shared<CardNumberField>();
    row.doing(*field);
    EXPECT_EQ(shown(*field), row.expected) << row.name;
  }
}

TEST(CardNumberField, GivesTheNumberWithoutABlank) {
  const auto field = std::make_shared<CardNumberField>();
  field->setText(" 4000 12341234 12 34");
  EXPECT_EQ(field->text(), "4000 1234 1234 1234");
  EXPECT_EQ(field->number(), "4000123412341234");
}

TEST(DecimalDigits, AreTakenFromAnyScriptAndWrittenAsZeroToNine) {
  struct DigitsRow {
    std::string name;
    std::string text;
    std::string expected;
  };
  const std::vector<DigitsRow> rows{
      {"ascii among others", "+27 (82) 123-4567 ext", "27821234567"},
      {"full width", "０８２１２３４５６７", "0821234567"},
      {"arabic-indic", "٠٨٢", "082"},
      {"beyond the basic plane", "\U0001D7CE\U0001D7D7", "09"},
      {"superscripts and fractions are none", "²½Ⅷ①", ""},
      {"a neighbour of a run of digits", "\uFF0F\uFF1A/:", ""},
      {"cut-off characters",
       "1\xEF\xBC"
       "2\xF0\x9D\x9F",
       "12"},
      {"stray bytes",
       "\x80\xFF"
       "7\xC2",
       "7"},
      {"empty", "", ""},
  };
  for (const DigitsRow& row : rows) {
    EXPECT_EQ(decimalDigitsOf(row.text), row.expected) << row.name;
  }
}

}  // namespace
}  // namespace orlix
