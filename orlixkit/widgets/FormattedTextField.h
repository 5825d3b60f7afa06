// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/widgets/SeparatedTextField.h"

namespace orlix {

/// A field for digits in a fixed format: "XX/XX" accepts four digits, one per X, and inserts the
/// slash. Other characters are dropped. Without a pattern it accepts any number of digits.
class FormattedTextField : public SeparatedTextField {
 public:
  FormattedTextField() { setKeyboard(Keyboard::numberPad); }

  const std::string& pattern() const { return pattern_; }
  /// Characters after the last X are never shown.
  void setPattern(std::string pattern);

 protected:
  std::vector<std::string> contentOf(std::string_view text) const override;
  std::string_view separatorBefore(std::size_t index) const override;
  std::size_t capacity() const override;

 private:
  std::string pattern_;
  std::vector<std::string> separators_;  ///< the text before each X
};

}  // namespace orlix
