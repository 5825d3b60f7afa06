// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/SecureCodeAutomator.h"

namespace orlix {

/// Answer to the request for an issuer's authentication page: its address with the PaReq to post to
/// it, or the page itself.
struct MTSecureCodeURLResponse {
  bool cardSupported = false;
  bool hasCardSupported = false;
  std::int64_t secureCodeId = 0;
  bool hasSecureCodeId = false;
  std::optional<std::string> URL;
  bool hasURL = false;
  std::optional<SecureCodeAutomator> automator;
  bool hasAutomator = false;
  std::optional<std::string> payload;  ///< PaReq
  bool hasPayload = false;
  std::optional<std::string> error;
  bool hasError = false;
  bool htmlPresent = false;
  bool hasHtmlPresent = false;
  std::optional<std::string> htmlContent;
  bool hasHtmlContent = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a value
  /// cannot be read.
  MTSecureCodeURLResponse& parseFromData(ByteView data);
};

}  // namespace orlix
