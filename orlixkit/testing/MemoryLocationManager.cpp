// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/MemoryLocationManager.h"

namespace orlix {

void MemoryLocationManager::start(const LocationOptions& options,
                                  LocationManagerDelegate& delegate) {
  if (!updating()) {
    options_ = options;
    delegate_ = &delegate;
  }
}

void MemoryLocationManager::sendFixes(const std::vector<LocationFix>& fixes) {
  if (updating()) {
    delegate_->didUpdateLocations(fixes);
  }
}

void MemoryLocationManager::sendError(const std::string& description) {
  if (updating()) {
    delegate_->didFailWithError(description);
  }
}

}  // namespace orlix
