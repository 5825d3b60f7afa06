// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/widgets/SeparatedTextField.h"

#include <algorithm>

#include "orlixkit/ports/Utf8.h"

namespace orlix {

void SeparatedTextField::setText(std::string_view text) {
  std::vector<std::string> characters = contentOf(text);
  characters.resize(std::min(characters.size(), capacity()));
  show(characters, characters.size());
}

SecretString SeparatedTextField::content() const {
  SecretString joined;
  for (const std::string& character : contentOf(secretText().text())) {
    joined.append(std::span(character.data(), character.size()));
  }
  return joined;
}

void SeparatedTextField::applyChange(TextRange range, const std::string& replacement) {
  const SecretString shown = secretText();
  const auto offset = [&shown, characters = charactersOf(shown.text())](std::size_t position) {
    return position < characters.size()
               ? static_cast<std::size_t>(characters[position].data() - shown.data())
               : shown.size();
  };
  const std::string_view view = shown.text();
  // The range is clamped to the text.
  const std::size_t location = std::min(range.location, shown.size());
  const std::size_t from = offset(location);
  const std::size_t to = offset(location + std::min(range.length, shown.size()));
  std::vector<std::string> before = contentOf(view.substr(0, from));
  std::vector<std::string> after = contentOf(view.substr(to));
  std::vector<std::string> added = contentOf(replacement);

  if (!replacement.empty() && added.empty()) {
    return;
  }
  if (replacement.empty() && from != to && contentOf(view.substr(from, to - from)).empty()) {
    if (caret() == range.location && !after.empty()) {
      after.erase(after.begin());
    } else if (!before.empty()) {
      before.pop_back();
    }
  }
  added.resize(std::min(added.size(), capacity() - before.size() - after.size()));
  before.insert(before.end(), added.begin(), added.end());
  const std::size_t charactersBeforeCaret = before.size();
  before.insert(before.end(), after.begin(), after.end());
  show(before, charactersBeforeCaret);
}

void SeparatedTextField::show(const std::vector<std::string>& content,
                              std::size_t charactersBeforeCaret) {
  SecretString shown;
  std::size_t caret = 0;
  std::size_t length = 0;
  for (std::size_t index = 0; index < content.size(); ++index) {
    const std::string_view separator = separatorBefore(index);
    shown.append(std::span(separator.data(), separator.size()));
    shown.append(std::span(content[index].data(), content[index].size()));
    length += charactersOf(separator).size() + 1;
    if (index + 1 == charactersBeforeCaret) {
      caret = length;
    }
  }
  putText(std::move(shown), caret);
}

}  // namespace orlix
