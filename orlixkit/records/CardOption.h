// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/records/Json.h"

namespace orlix {

/// How a card pays.
enum class CardOptionMethod : std::int32_t {
  notSet = 0,
  amt = 1,  ///< with the wallet PIN
  secureCode = 2,
  wallet = 3,
  cnp = 4  ///< card not present: without PIN
};

/// A card offered for payment.
struct CardOption {
  std::int64_t cardId = 0;
  bool hasCardId = false;  ///< never set, see `parseFromData`
  std::optional<std::string> cardHint;
  bool hasCardHint = false;
  bool needCvv = false;
  bool hasNeedCvv = false;
  std::optional<std::string> cardType;
  bool hasCardType = false;
  std::optional<std::string> drawLine;
  bool hasDrawLine = false;
  CardOptionMethod method = CardOptionMethod::notSet;
  bool hasMethod = false;  ///< also with an unknown text
  std::int64_t imageId = 0;
  bool hasImageId = false;
  std::optional<std::string> product;
  bool hasProduct = false;
  bool authed3Ds = false;
  bool hasAuthed3Ds = false;
  bool validated = false;
  bool hasValidated = false;
  std::optional<std::string> validationtype;
  bool hasValidationtype = false;
  std::optional<std::string> issuer;
  bool hasIssuer = false;
  bool allowCnp = false;     ///< whether the key exists, whatever its value
  bool hasAllowCnp = false;  ///< never set

  /// Throws std::invalid_argument when a number or boolean cannot be read.
  CardOption& parseFromData(const JsonDictionary& dictionary);
};

}  // namespace orlix
