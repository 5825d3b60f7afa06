// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/Json.h"
#include "orlixkit/records/MTCardList.h"
#include "orlixkit/records/MTCodeInfo.h"

namespace orlix {

/// Answer to the lookup of a code. Without `codeInfo` the code is not valid, and `message` holds
/// the reason.
struct MTCodeResponse {
  std::optional<std::string> message;
  bool hasMessage = false;
  std::optional<MTCodeInfo> codeInfo;
  bool hasCodeInfo = false;
  std::optional<MTCardList> cardList;
  bool hasCardList = false;
  std::shared_ptr<const JsonValue> URLResponse;  ///< the JSON value
  bool hasURLResponse = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a value
  /// cannot be read.
  MTCodeResponse& parseFromData(ByteView data);
};

}  // namespace orlix
