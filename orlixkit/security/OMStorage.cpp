// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/OMStorage.h"

#include <utility>

#include "orlixkit/host/Host.h"

namespace orlix {

OMStorage::OMStorage(std::string storageKey) : storageKey_(std::move(storageKey)) {}

namespace {

/// Log the file, the cause and the remedy for the operator: callers report every failure as a lost
/// connection, without its cause.
auto logged(const auto& useStore) {
  try {
    return useStore(*Host::current().ports().userDefaults);
  } catch (const StoreException& failure) {
    log(failure.what());
    throw;
  }
}

}  // namespace

Bytes OMStorage::loadData() {
  log("OMStorage - loadData");
  return logged([this](const UserDefaults& store) {
    return store.dataForKey(storageKey_).value_or(Bytes());
  });
}

void OMStorage::saveData(const std::optional<Bytes>& data) {
  log("OMStorage - saveData");
  if (!data) {
    log("OMStorage: there is nothing to save, the stored record stays");
    return;
  }
  logged([&](UserDefaults& store) { store.setValue(storageKey_, *data); });
}

}  // namespace orlix
