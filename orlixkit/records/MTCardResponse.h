// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/MTCardList.h"
#include "orlixkit/records/MTReceipt.h"

namespace orlix {

enum class CardResponseStatus : std::int32_t { notSet = 0, success = 1, failed = 2, relink = 3 };

/// Answer to linking or removing a card.
struct MTCardResponse {
  CardResponseStatus status = CardResponseStatus::notSet;
  bool hasStatus = false;  ///< only with a known text
  std::optional<MTReceipt> receipt;
  bool hasReceipt = false;
  std::optional<MTCardList> cardList;
  bool hasCardList = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a value
  /// cannot be read.
  MTCardResponse& parseFromData(ByteView data);
};

}  // namespace orlix
