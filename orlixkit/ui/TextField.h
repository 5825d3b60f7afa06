// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/ui/View.h"

namespace orlix {

class TextField;

/// Characters of a text, counted in code points of its UTF-8 form.
struct TextRange {
  std::size_t location = 0;
  std::size_t length = 0;
};

class TextFieldDelegate {
 public:
  virtual ~TextFieldDelegate() = default;
  virtual bool textFieldShouldBeginEditing(TextField&) { return true; }
  /// False: the field leaves the change out (the delegate may have set another text).
  virtual bool textFieldShouldChangeCharacters(TextField&, TextRange, const std::string&) {
    return true;
  }
};

enum class Keyboard { standard, numberPad, phonePad };

/// One line of text that a user edits. Its text is kept as a secret whatever the field is for, so
/// that a PIN or CVV leaves no trace when the field is changed or released.
class TextField : public View {
 public:
  std::string kind() const override { return "field"; }
  /// The text; bullets, one a character, when the field is secure.
  std::string shownText() const override;

  std::string text() const { return std::string(text_.text()); }
  const SecretString& secretText() const { return text_; }
  /// Number of characters (code points).
  std::size_t textLength() const;
  virtual void setText(std::string_view text);

  bool secure() const { return secure_; }
  void setSecure(bool secure) { set(secure_, secure); }
  Keyboard keyboard() const { return keyboard_; }
  void setKeyboard(Keyboard keyboard) { set(keyboard_, keyboard); }
  const std::string& placeholder() const { return placeholder_; }
  void setPlaceholder(std::string text) { set(placeholder_, std::move(text)); }
  bool enabled() const { return enabled_; }
  void setEnabled(bool enabled) { set(enabled_, enabled); }
  bool editing() const { return editing_; }

  /// Title of the one button of the bar above the keyboard; empty for no bar. It ends editing.
  const std::string& toolbarButton() const { return toolbarButton_; }
  void setToolbarButton(std::string title) { set(toolbarButton_, std::move(title)); }

  /// Not owned; usually the screen that holds the field.
  void setDelegate(TextFieldDelegate* delegate) { delegate_ = delegate; }

  /// What a user's doing calls, from a shell, a script or a test.
  /// The field was touched. False when its delegate wants no editing.
  bool beginEditing();
  void endEditing();
  /// Keys: `replacement` is typed (or pasted) over `range`; an empty one deletes. The delegate
  /// decides; the caret goes behind what was put in. Nothing happens while the field is disabled.
  void replaceCharacters(TextRange range, const std::string& replacement);
  /// Where the next key goes, in code points.
  std::size_t caret() const { return caret_; }
  void setCaret(std::size_t caret);

 protected:
  /// A change that the delegate has allowed. A field with a format of its own overrides it.
  virtual void applyChange(TextRange range, const std::string& replacement);
  void putText(SecretString text, std::size_t caret);

 private:
  SecretString text_;
  std::size_t caret_ = 0;
  bool secure_ = false;
  Keyboard keyboard_ = Keyboard::standard;
  std::string placeholder_;
  std::string toolbarButton_;
  bool enabled_ = true;
  bool editing_ = false;
  TextFieldDelegate* delegate_ = nullptr;
};

}  // namespace orlix
