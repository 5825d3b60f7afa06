#pragma once

#include <cstdint>
#include <mutex>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// Orders the two writers of the device's credentials: an activation, which stores the token of its
/// answer from the background, and a wipe, which a change of customer or the host asks for. An
/// activation that was under way at a wipe stores nothing, or the next customer would pay with the
/// former one's wallet.
///
/// Thread: any. The lock is held for one operation of the store, never across the network.
class StoredCredentials {
 public:
  static StoredCredentials& shared();

  /// How often the credentials have been wiped in this process.
  std::uint64_t wipes() const;
  /// Runs `erase`. One that throws does not count as a wipe.
  void wipe(const Task& erase);
  /// Runs `store` unless there has been a wipe since `wipes` was read. True when it has run.
  bool storeUnlessWiped(std::uint64_t wipes, const Task& store);

 private:
  mutable std::mutex lock_;
  std::uint64_t wipes_ = 0;
};

}  // namespace orlix
