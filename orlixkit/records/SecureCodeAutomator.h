// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/records/Json.h"

namespace orlix {

enum class SecureCodeAutomatorType : std::int32_t {
  notSet = 0,
  smsOtp = 1,    ///< one-time code sent by SMS
  password = 2,  ///< static password
  pushUssd = 3,  ///< confirmation by push message or USSD
  jsOnly = 4     ///< script only
};

/// Describes how an issuer's authentication page can be filled in automatically.
struct SecureCodeAutomator {
  SecureCodeAutomatorType type = SecureCodeAutomatorType::notSet;
  bool hasType = false;
  std::optional<std::string> javascript;
  bool hasJavascript = false;
  std::optional<std::string> smsRegex;  ///< finds the one-time code in an incoming text
  bool hasSmsRegex = false;
  std::optional<std::string> inputPrompt;
  bool hasInputPrompt = false;

  SecureCodeAutomator& parseFromData(const JsonDictionary& dictionary);
};

}  // namespace orlix
