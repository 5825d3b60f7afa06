#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/platform/ui/TextField.h"

namespace orlix {

/// A field that sets separators between the characters that the user types.
///
/// Its text is what the user sees, separators included, so that ranges, caret and text speak of the
/// same positions. The user types, pastes and deletes content; the separators follow by themselves,
/// the caret stays behind the character that it stood behind. A separator is shown only between two
/// characters, never at the end, so a deletion at the end always takes a character.
class SeparatedTextField : public TextField {
 public:
  void setText(std::string_view text) override;
  /// The text without its separators.
  SecretString content() const;

 protected:
  /// A deletion that meets nothing but separators takes the character beside them: the one after
  /// the caret when the caret stands before them, else the one before. Characters that do not fit
  /// any more, and a replacement that holds nothing usable, change nothing.
  void applyChange(TextRange range, const std::string& replacement) override;

  /// The characters of a text that count, each as it is to be shown.
  virtual std::vector<std::string> contentOf(std::string_view text) const = 0;
  /// What stands between the characters `index - 1` and `index`; empty for most.
  virtual std::string_view separatorBefore(std::size_t index) const = 0;
  /// How many characters fit.
  virtual std::size_t capacity() const { return std::numeric_limits<std::size_t>::max(); }

 private:
  void show(const std::vector<std::string>& content, std::size_t charactersBeforeCaret);
};

}  // namespace orlix
