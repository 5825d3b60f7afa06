#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "orlixkit/platform/Secret.h"
#include "orlixkit/security/DataStore.h"

namespace orlix {

/// What came of one exchange with the server. Every failure shows here; nothing is thrown.
struct NetworkResult {
  /// HTTP status code of the answer; 0 while no answer header has arrived.
  std::int64_t responseCode = 0;
  /// The whole body; none unless the exchange was completed. A time-out after the header leaves a
  /// code without a body. Secret, because the session's answer carries the PIN key.
  std::optional<SecretBytes> payload;
};

/// The way to the wallet server, so that another transport can stand in.
class NetworkInterface {
 public:
  virtual ~NetworkInterface() = default;

  /// Posts `payload` to `url` with the session tokens of `dataStore` and blocks until the exchange
  /// is over. Never throws. `mayBeSent` is asked as HttpDelegate has it: false ends the exchange as
  /// failed, with nothing sent.
  virtual NetworkResult post(const std::string& url, const std::optional<SecretBytes>& payload,
                             const DataStore& dataStore, std::function<bool()> mayBeSent = {}) = 0;
};

}  // namespace orlix
