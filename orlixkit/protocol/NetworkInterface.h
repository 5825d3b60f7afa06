// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/security/DataStore.h"

namespace orlix {

/// Result of one exchange with the server. Reports every failure; nothing is thrown.
struct NetworkResult {
  /// HTTP status code of the answer; 0 while no answer header has arrived.
  std::int64_t responseCode = 0;
  /// The whole body; absent unless the exchange was completed. A time-out after the header leaves a
  /// code without a body. Secret, because the session's answer carries the PIN key.
  std::optional<SecretBytes> payload;
};

/// Transport to the wallet server; an interface, so that it can be replaced.
class NetworkInterface {
 public:
  virtual ~NetworkInterface() = default;

  /// Posts `payload` to `url` with the session tokens of `dataStore` and blocks until the exchange
  /// has ended. Never throws. `mayBeSent` is called like `HttpDelegate::mayBeSent`: false fails the
  /// exchange, with nothing sent.
  virtual NetworkResult post(const std::string& url, const std::optional<SecretBytes>& payload,
                             const DataStore& dataStore, std::function<bool()> mayBeSent = {}) = 0;
};

}  // namespace orlix
