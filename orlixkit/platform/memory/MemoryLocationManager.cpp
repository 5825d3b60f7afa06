#include "orlixkit/platform/memory/MemoryLocationManager.h"

namespace orlix {

void MemoryLocationManager::sendFixes(const std::vector<LocationFix>& fixes) {
  if (updating_ && delegate_ != nullptr) {
    delegate_->didUpdateLocations(fixes);
  }
}

void MemoryLocationManager::sendError(const std::string& description) {
  if (updating_ && delegate_ != nullptr) {
    delegate_->didFailWithError(description);
  }
}

}  // namespace orlix
