// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/UserDefaults.h"

namespace orlix {

/// The last used card of each system, between the screens and the store.
///
/// A choice is visible to every reader at once and is written to the store in the background,
/// because a store that another process has locked must not delay a payment. Pending writes are
/// made at the host's shutdown at the latest. A failed write is logged and does not stop a payment:
/// the choice is lost at the next start.
///
/// Process-wide: `Host::current().shared<LastUsedCards>()`. Thread: `set` on the main thread, `get`
/// on any.
class LastUsedCards {
 public:
  LastUsedCards();

  /// `key`: the name in the store, which contains the system (see `OXUtil`).
  void set(const std::string& key, std::int64_t cardId);
  /// 0 without a choice. Throws StoreException when this process has made no choice and the store
  /// cannot be read.
  std::int64_t get(const std::string& key) const;

 private:
  void writeAll();
  bool write(const std::string& key, std::int64_t cardId);

  const std::shared_ptr<UserDefaults> store_;
  std::shared_ptr<OperationQueue> writes_;  ///< made at the first choice
  mutable std::mutex lock_;                 // guards what follows; not held while the store is used
  std::map<std::string, std::int64_t> chosen_;
  std::map<std::string, std::int64_t> stored_;  ///< need no write: most payments use the same card
  std::deque<std::string> unwritten_;  // keys, each once: the newest choice replaces the others
};

}  // namespace orlix
