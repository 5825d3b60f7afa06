// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTAmountOptions.h"

#include "orlixkit/records/AnswerReader.h"

namespace orlix {

MTAmountOptions& MTAmountOptions::parseFromData(const JsonDictionary& dictionary) {
  const AnswerReader answer(dictionary);
  answer.read("min", min, hasMin);
  answer.read("max", max, hasMax);
  answer.read("discountFixed", discountFixed, hasDiscountFixed);
  answer.read("discountPercentage", discountPercentage, hasDiscountPercentage);
  return *this;
}

}  // namespace orlix
