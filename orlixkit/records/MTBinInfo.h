// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Answer to the lookup of a card number's first digits (BIN): whether the card can be added, and
/// which values the user has to enter.
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
