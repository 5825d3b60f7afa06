#pragma once

#include <string>

#include "orlixkit/security/StorageInterface.h"

namespace orlix {

/// The blob in the user defaults of the installed host, under one key: "live.data" or "test.data",
/// so that the records of the two systems never meet.
///
/// Thread: any. A store that cannot be read or written is logged, and makes both operations throw
/// StoreException; the former blob is then still there.
class OMStorage : public StorageInterface {
 public:
  explicit OMStorage(std::string storageKey);
  Bytes loadData() override;
  /// None is logged and leaves the former blob in place: a failed encryption must not cost the user
  /// the activation of the device.
  void saveData(const std::optional<Bytes>& data) override;

 private:
  std::string storageKey_;
};

}  // namespace orlix
