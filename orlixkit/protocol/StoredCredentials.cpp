// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/StoredCredentials.h"

#include "orlixkit/host/Host.h"

namespace orlix {

StoredCredentials& StoredCredentials::shared() {
  return Host::current().shared<StoredCredentials>();
}

std::uint64_t StoredCredentials::wipes() const {
  const std::lock_guard held(lock_);
  return wipes_;
}

void StoredCredentials::wipe(const Task& erase) {
  const std::lock_guard held(lock_);
  erase();
  ++wipes_;
}

bool StoredCredentials::storeUnlessWiped(std::uint64_t wipes, const Task& store) {
  const std::lock_guard held(lock_);
  if (wipes != wipes_) {
    return false;
  }
  store();
  return true;
}

}  // namespace orlix
