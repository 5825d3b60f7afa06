// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/TextField.h"

#include <algorithm>

#include "orlixkit/ports/Utf8.h"

namespace orlix {

namespace {

/// Byte offset of the character with this index; the text's size behind the last one.
std::size_t byteOffset(std::string_view text, std::size_t character) {
  std::size_t offset = 0;
  for (std::size_t seen = 0; offset < text.size(); ++offset) {
    if (startsCharacter(text[offset]) && seen++ == character) {
      break;
    }
  }
  return offset;
}

}  // namespace

std::string TextField::shownText() const {
  if (!secure_) {
    return text();
  }
  std::string bullets;
  for (std::size_t i = 0; i < textLength(); ++i) {
    bullets += "\u2022";
  }
  return bullets;
}

std::size_t TextField::textLength() const { return countCharacters(text_.text()); }

void TextField::setText(std::string_view text) {
  putText(SecretString(text), countCharacters(text));
}

bool TextField::beginEditing() {
  if (!enabled_ || (delegate_ != nullptr && !delegate_->textFieldShouldBeginEditing(*this))) {
    return false;
  }
  set(editing_, true);
  return true;
}

void TextField::endEditing() { set(editing_, false); }

void TextField::setCaret(std::size_t caret) { caret_ = std::min(caret, textLength()); }

void TextField::replaceCharacters(TextRange range, const std::string& replacement) {
  if (!enabled_) {
    return;
  }
  if (delegate_ == nullptr ||
      delegate_->textFieldShouldChangeCharacters(*this, range, replacement)) {
    applyChange(range, replacement);
  }
}

void TextField::applyChange(TextRange range, const std::string& replacement) {
  const std::size_t from = byteOffset(text_.text(), range.location);
  const std::size_t size = byteOffset(text_.text().substr(from), range.length);
  SecretString changedText = text_;
  changedText.replace(from, size, std::span(replacement.data(), replacement.size()));
  putText(std::move(changedText),
          std::min(range.location, textLength()) + countCharacters(replacement));
}

void TextField::putText(SecretString text, std::size_t caret) {
  text_ = std::move(text);
  setCaret(caret);
  changed();
}

}  // namespace orlix
