// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <mutex>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Serialises the two writers of the device's credentials: an activation, which stores the token of
/// its answer from the background, and a wipe, requested by the host or a change of customer. An
/// activation that was pending at a wipe stores nothing; otherwise the next customer would pay with
/// the former one's wallet.
///
/// Thread: any. The lock is held for one operation of the store, never during an exchange.
class StoredCredentials {
 public:
  static StoredCredentials& shared();

  /// Number of wipes in this process.
  std::uint64_t wipes() const;
  /// Runs `erase` and counts a wipe, unless `erase` throws.
  void wipe(const Task& erase);
  /// Runs `store` unless a wipe has occurred since `wipes` was read. True when it has run.
  bool storeUnlessWiped(std::uint64_t wipes, const Task& store);

 private:
  mutable std::mutex lock_;
  std::uint64_t wipes_ = 0;
};

}  // namespace orlix
