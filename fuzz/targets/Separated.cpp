// SPDX-License-Identifier: Apache-2.0

// Fields that set separators. An input is the field's number, a line end, its text, a line end, and
// a change on each further line: where, how much ('0' and up, or 'z' for the largest number there
// is), and what is put there.

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/widgets/CardNumberField.h"
#include "orlixkit/widgets/DecimalDigits.h"
#include "orlixkit/widgets/FormattedTextField.h"

namespace orlix::fuzz {

namespace {

constexpr const char* kPatterns[] = {"XX/XX", "XX/XX/XXXX", "(XX) - X€X.", "", "X"};

/// Of a card number, or with one of the patterns.
std::shared_ptr<SeparatedTextField> makeField(std::size_t number) {
  if (number == 0 || number > std::size(kPatterns)) {
    return std::make_shared<CardNumberField>();
  }
  auto field = std::make_shared<FormattedTextField>();
  field->setPattern(kPatterns[number - 1]);
  return field;
}

std::size_t numberOf(char sign) {
  return sign == 'z' ? std::numeric_limits<std::size_t>::max()
                     : static_cast<unsigned char>(sign - '0');
}

class Edited {
 public:
  explicit Edited(std::size_t number) : number_(number), field_(makeField(number)) {}

  void setText(std::string_view text) {
    field_->setText(text);
    holds();
  }

  void change(TextRange range, const std::string& replacement) {
    const std::string before(field_->content().text());
    const std::size_t length = field_->textLength();
    field_->replaceCharacters(range, replacement);
    holds();
    const std::string after(field_->content().text());
    const std::size_t added = contentSize(replacement);
    if (added == 0 && !replacement.empty()) {
      check(after == before, "what holds nothing usable changes nothing");
    } else if (added == 0) {
      deletes(before, after, range, length);
    } else {
      check(charactersOf(after).size() <= charactersOf(before).size() + added,
            "a change adds what it brings at most");
      check(range.length != 0 || keeps(before, after), "typing takes nothing away");
    }
  }

 private:
  /// How much of a text this field takes for content, when there is room for it.
  std::size_t contentSize(const std::string& text) const {
    if (number_ == 0 || number_ > std::size(kPatterns)) {
      const auto characters = charactersOf(text);
      return characters.size() -
             static_cast<std::size_t>(std::count(characters.begin(), characters.end(), " "));
    }
    return decimalDigitsOf(text).size();
  }

  /// Whether `after` is `before` with something put in at one place.
  static bool keeps(const std::string& before, const std::string& after) {
    const auto start =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first -
        before.begin();
    return after.size() >= before.size() &&
           after.ends_with(std::string_view(before).substr(static_cast<std::size_t>(start)));
  }

  static void deletes(const std::string& before, const std::string& after, TextRange range,
                      std::size_t length) {
    const std::size_t from = charactersOf(before).size();
    const std::size_t left = charactersOf(after).size();
    const bool meetsText = range.length != 0 && range.location < length;
    check(left <= from && from - left <= std::max<std::size_t>(range.length, 1),
          "a deletion takes what it meets at most, or one character instead of separators");
    check(meetsText || left == from, "a deletion that meets no text takes nothing");
    const bool atTheEnd = meetsText && range.length >= length - range.location;
    check(!atTheEnd || left < from, "a deletion at the end takes a character");
  }

  void holds() const {
    check(field_->caret() <= field_->textLength(), "the caret stands in the text");
    const auto other = makeField(number_);
    other->setText(field_->content().text());
    check(other->text() == field_->text(), "the content alone says where the separators are");
  }

  std::size_t number_;
  std::shared_ptr<SeparatedTextField> field_;
};

}  // namespace

void separated(ByteView input) {
  std::string_view rest = textOf(input);
  const std::string_view number = takeLine(rest);
  if (!isUtf8(rest)) {
    return;  // keyboards and clipboards bring UTF-8
  }
  Edited field(number.empty() ? 0 : numberOf(number.front()));
  field.setText(takeLine(rest));
  while (!rest.empty()) {
    const std::string_view line = takeLine(rest);
    if (line.size() >= 2) {
      const std::string replacement(line.substr(2));
      if (isUtf8(replacement)) {
        field.change({numberOf(line[0]), numberOf(line[1])}, replacement);
      }
    }
  }
}

}  // namespace orlix::fuzz
