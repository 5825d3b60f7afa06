// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/records/Json.h"

namespace orlix {

/// Limits and discounts of an amount that the user chooses; decimal texts.
struct MTAmountOptions {
  std::optional<std::string> min;
  bool hasMin = false;
  std::optional<std::string> max;
  bool hasMax = false;
  std::optional<std::string> discountFixed;
  bool hasDiscountFixed = false;
  std::optional<std::string> discountPercentage;
  bool hasDiscountPercentage = false;

  MTAmountOptions& parseFromData(const JsonDictionary& dictionary);
};

}  // namespace orlix
