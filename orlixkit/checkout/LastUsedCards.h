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
/// A choice counts at once for every reader until the host's shutdown, and is written to the store
/// in the background: a store that another process has locked must not delay a payment. What is not
/// written yet at the shutdown is written then. A choice that cannot be stored is logged: forgotten
/// after a restart, it is no reason to stop a payment.
///
/// Process-wide: `Host::current().shared<LastUsedCards>()`. Thread: `set` on the main thread, `get`
/// on any.
class LastUsedCards {
 public:
  LastUsedCards();

  /// `key`: the card's name in the store, which contains the system.
  void set(const std::string& key, std::int64_t cardId);
  /// 0 when there is none. Throws StoreException when there is no choice yet and the store cannot
  /// be read.
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
