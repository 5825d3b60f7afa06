// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/security/StorageInterface.h"

namespace orlix {

/// The blob in the user defaults of the installed host, under one key: "live.data" or "test.data",
/// so that the two systems keep separate records.
///
/// Thread: any. When the store cannot be read or written, both operations log it and throw
/// StoreException; the former blob is kept.
class OMStorage : public StorageInterface {
 public:
  explicit OMStorage(std::string storageKey);
  Bytes loadData() override;
  /// An absent blob is logged and the former one is kept: a failed encryption must not deactivate
  /// the device.
  void saveData(const std::optional<Bytes>& data) override;

 private:
  std::string storageKey_;
};

}  // namespace orlix
