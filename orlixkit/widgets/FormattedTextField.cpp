// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/widgets/FormattedTextField.h"

#include <utility>

#include "orlixkit/widgets/DecimalDigits.h"

namespace orlix {

void FormattedTextField::setPattern(std::string pattern) {
  const SecretString digits = content();
  pattern_ = std::move(pattern);
  separators_.clear();
  std::string separator;
  for (const char unit : pattern_) {
    if (unit == 'X') {
      separators_.push_back(std::exchange(separator, {}));
    } else {
      separator.push_back(unit);
    }
  }
  setText(digits.text());
}

std::vector<std::string> FormattedTextField::contentOf(std::string_view text) const {
  std::vector<std::string> digits;
  for (const char digit : decimalDigitsOf(text)) {
    digits.emplace_back(1, digit);
  }
  return digits;
}

std::string_view FormattedTextField::separatorBefore(std::size_t index) const {
  return index < separators_.size() ? std::string_view(separators_[index]) : std::string_view();
}

std::size_t FormattedTextField::capacity() const {
  return pattern_.empty() ? SeparatedTextField::capacity() : separators_.size();
}

}  // namespace orlix
