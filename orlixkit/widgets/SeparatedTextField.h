// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/ui/TextField.h"

namespace orlix {

/// A field that inserts separators between the characters that the user types.
///
/// Its text is the displayed text, separators included, so that ranges, caret and text use the same
/// positions. Edits apply to the content; separators are then inserted again, and the caret stays
/// after the same character. A separator appears only between two characters, never at the end, so
/// a deletion at the end always removes a character.
class SeparatedTextField : public TextField {
 public:
  void setText(std::string_view text) override;
  /// The text without its separators.
  SecretString content() const;

 protected:
  /// A deletion of separators only removes the adjacent character: the one after them when the
  /// caret is before them, else the one before. Characters beyond the maximum are dropped, and a
  /// replacement without usable characters has no effect.
  void applyChange(TextRange range, const std::string& replacement) override;

  /// The accepted characters of a text, each as it is displayed.
  virtual std::vector<std::string> contentOf(std::string_view text) const = 0;
  /// The separator between the characters `index - 1` and `index`; mostly empty.
  virtual std::string_view separatorBefore(std::size_t index) const = 0;
  /// Maximum number of characters.
  virtual std::size_t capacity() const { return std::numeric_limits<std::size_t>::max(); }

 private:
  void show(const std::vector<std::string>& content, std::size_t charactersBeforeCaret);
};

}  // namespace orlix
