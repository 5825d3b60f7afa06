#pragma once

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// What the first digits of a card number (its BIN) tell: whether the card can be added, and what
/// the user has to give for it.
struct MTBinInfo {
  bool cardSupported = false;
  bool hasCardSupported = false;
  bool needAccount = false;
  bool hasNeedAccount = false;
  bool needExp = false;
  bool hasNeedExp = false;
  bool needDob = false;
  bool hasNeedDob = false;
  bool needCardHolderName = false;
  bool hasNeedCardHolderName = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a boolean
  /// cannot be read.
  MTBinInfo& parseFromData(ByteView data);
};

}  // namespace orlix
