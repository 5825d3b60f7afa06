// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/widgets/SeparatedTextField.h"

namespace orlix {

/// A field for a card number, displayed in groups of four while it is typed.
///
/// `text` is the displayed text, with blanks between the groups. `number`, used for validation and
/// sent to the server, has no blanks, including those typed by the user. Nothing else is filtered
/// and no length is enforced: the server validates card numbers.
class CardNumberField : public SeparatedTextField {
 public:
  CardNumberField() { setKeyboard(Keyboard::numberPad); }
  SecretString number() const { return content(); }
  /// Brand by the first digits, in the words of the server ("visa", "orbis", "amex"); empty while
  /// they match none. For display while the user types: the server decides what the card is.
  std::string brand() const;

 protected:
  std::vector<std::string> contentOf(std::string_view text) const override;
  std::string_view separatorBefore(std::size_t index) const override;
};

}  // namespace orlix
