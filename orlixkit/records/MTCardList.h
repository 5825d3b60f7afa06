// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/CardOption.h"
#include "orlixkit/records/Json.h"

namespace orlix {

/// The cards of the wallet, in the server's order. Parsing into a list that holds cards appends.
struct MTCardList {
  std::vector<CardOption> cardsArray;
  std::int32_t cardsArray_Count = 0;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when "cards" is
  /// no array of readable cards.
  MTCardList& parseFromData(ByteView data);
  MTCardList& parseFromDictionary(const JsonDictionary& dictionary);
};

}  // namespace orlix
