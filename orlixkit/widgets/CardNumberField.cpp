// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/widgets/CardNumberField.h"

#include "orlixkit/ports/Utf8.h"

namespace orlix {

std::vector<std::string> CardNumberField::contentOf(std::string_view text) const {
  std::vector<std::string> characters;
  for (const std::string_view character : charactersOf(text)) {
    if (character != " ") {
      characters.emplace_back(character);
    }
  }
  return characters;
}

std::string_view CardNumberField::separatorBefore(std::size_t index) const {
  return index > 0 && index % 4 == 0 ? " " : "";
}

}  // namespace orlix
