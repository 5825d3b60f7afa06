// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/widgets/CardNumberField.h"

#include <utility>

#include "orlixkit/ports/Utf8.h"

namespace orlix {

std::string CardNumberField::brand() const {
  static constexpr std::pair<std::string_view, const char*> kFirstDigits[] = {
      {"4", "visa"}, {"5", "orbis"}, {"34", "amex"}, {"37", "amex"}};
  const SecretString digits = number();
  for (const auto& [first, brand] : kFirstDigits) {
    if (digits.text().starts_with(first)) {
      return brand;
    }
  }
  return {};
}

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
