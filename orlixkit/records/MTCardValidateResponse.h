// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/MTCardList.h"

namespace orlix {

/// Answer to the validation of a card.
struct MTCardValidateResponse {
  std::optional<std::string> message;
  bool hasMessage = false;
  std::optional<MTCardList> cardList;
  bool hasCardList = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a value
  /// cannot be read.
  MTCardValidateResponse& parseFromData(ByteView data);
};

}  // namespace orlix
