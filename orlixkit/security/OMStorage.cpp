#include "orlixkit/security/OMStorage.h"

#include <utility>

#include "orlixkit/platform/Host.h"

namespace orlix {

OMStorage::OMStorage(std::string storageKey) : storageKey_(std::move(storageKey)) {}

Bytes OMStorage::loadData() {
  log("OMStorage - loadData");
  return Host::current().ports().userDefaults->dataForKey(storageKey_).value_or(Bytes());
}

void OMStorage::saveData(const std::optional<Bytes>& data) {
  log("OMStorage - saveData");
  if (!data) {
    log("OMStorage: there is nothing to save, the stored record stays");
    return;
  }
  Host::current().ports().userDefaults->setData(storageKey_, *data);
}

}  // namespace orlix
