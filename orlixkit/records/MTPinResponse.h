// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

enum class PinResponseStatus : std::int32_t {
  notSet = 0,
  success = 1,
  error = 2,
  invalidPassword = 3
};

/// Answer to a purchase.
struct MTPinResponse {
  PinResponseStatus status = PinResponseStatus::notSet;
  bool hasStatus = false;  ///< also with an unknown text
  std::int64_t transactionId = 0;
  bool hasTransactionId = false;
  std::optional<std::string> errorMessage;
  bool hasErrorMessage = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a number
  /// cannot be read.
  MTPinResponse& parseFromData(ByteView data);
};

}  // namespace orlix
