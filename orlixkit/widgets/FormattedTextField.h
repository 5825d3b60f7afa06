#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/widgets/SeparatedTextField.h"

namespace orlix {

/// A field for digits in a fixed form: "XX/XX" takes four digits, each X one, and sets the slash by
/// itself. Anything but a digit is left out. Without a pattern it takes any number of digits.
class FormattedTextField : public SeparatedTextField {
 public:
  FormattedTextField() { setKeyboard(Keyboard::numberPad); }

  const std::string& pattern() const { return pattern_; }
  /// What stands behind the last X is never shown.
  void setPattern(std::string pattern);

 protected:
  std::vector<std::string> contentOf(std::string_view text) const override;
  std::string_view separatorBefore(std::size_t index) const override;
  std::size_t capacity() const override;

 private:
  std::string pattern_;
  std::vector<std::string> separators_;  ///< what stands before each X
};

}  // namespace orlix
