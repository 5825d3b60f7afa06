#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/widgets/SeparatedTextField.h"

namespace orlix {

/// A field for a card number, shown in groups of four while it is typed.
///
/// `text` is what the user sees, with the blanks between the groups. The rules about card numbers
/// and the server are given `number`, in which no blank is left, neither ours nor one that the user
/// typed. Nothing else is filtered, no length is enforced: what makes a card number is for the
/// server to say.
class CardNumberField : public SeparatedTextField {
 public:
  CardNumberField() { setKeyboard(Keyboard::numberPad); }
  SecretString number() const { return content(); }

 protected:
  std::vector<std::string> contentOf(std::string_view text) const override;
  std::string_view separatorBefore(std::size_t index) const override;
};

}  // namespace orlix
