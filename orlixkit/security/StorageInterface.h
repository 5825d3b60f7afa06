// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Storage of the encrypted record. Called by one thread at a time.
class StorageInterface {
 public:
  virtual ~StorageInterface() = default;
  /// The stored blob; empty when nothing is stored.
  virtual Bytes loadData() = 0;
  /// Replaces the stored blob. An absent blob results from a failed encryption and must not make
  /// this fail.
  virtual void saveData(const std::optional<Bytes>& data) = 0;
};

}  // namespace orlix
