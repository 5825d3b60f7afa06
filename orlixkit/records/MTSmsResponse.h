// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Callers of the activation compare with these numbers; 1 is unused.
enum class SmsResponseStatus : std::int32_t { notSet = 0, success = 2, other = 3 };

/// Answer to a step of the activation by SMS.
struct MTSmsResponse {
  SmsResponseStatus status = SmsResponseStatus::notSet;
  bool hasStatus = false;                 ///< always true once parsed
  std::optional<std::string> newSsToken;  ///< only on success
  bool hasNewSsToken = false;

  /// Throws NetworkException when the data is no JSON object.
  MTSmsResponse& parseFromData(ByteView data);
};

}  // namespace orlix
