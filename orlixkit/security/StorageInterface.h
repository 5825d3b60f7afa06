#pragma once

#include <optional>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// Where the encrypted record is kept. Called from background tasks, one at a time.
class StorageInterface {
 public:
  virtual ~StorageInterface() = default;
  /// The stored blob; empty when nothing is stored.
  virtual Bytes loadData() = 0;
  /// Replaces the stored blob. None comes from an encryption that failed; it is no reason to fail.
  virtual void saveData(const std::optional<Bytes>& data) = 0;
};

}  // namespace orlix
