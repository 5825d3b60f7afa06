// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/LastUsedCards.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include "orlixkit/host/Host.h"

namespace orlix {

// Tasks hold `this`: it lives in the host, whose queues are closed before it goes.
LastUsedCards::LastUsedCards() : store_(Host::current().ports().userDefaults) {
  Host::current().atShutdown([this] { writeAll(); });
}

void LastUsedCards::set(const std::string& key, std::int64_t cardId) {
  {
    const std::lock_guard lock(lock_);
    chosen_[key] = cardId;
    if (const auto found = stored_.find(key); found != stored_.end() && found->second == cardId) {
      return;
    }
    if (std::find(unwritten_.begin(), unwritten_.end(), key) == unwritten_.end()) {
      unwritten_.push_back(key);
    }
  }
  try {
    if (!writes_) {
      writes_ = Host::current().ports().backgroundQueues->newOperationQueue();
    }
    writes_->add([this] { writeAll(); });
  } catch (const std::system_error& failure) {
    // No thread: the next choice, or the shutdown, writes this one as well.
    log(std::string("OrlixKit: The last used card is stored later: ") + failure.what());
  }
}

std::int64_t LastUsedCards::get(const std::string& key) const {
  {
    const std::lock_guard lock(lock_);
    if (const auto found = chosen_.find(key); found != chosen_.end()) {
      return found->second;
    }
  }
  return store_->integerForKey(key);
}

/// One task at a time: the queue's, or, once the queues are closed, the shutdown.
void LastUsedCards::writeAll() {
  while (true) {
    std::string key;
    std::int64_t cardId = 0;
    {
      const std::lock_guard lock(lock_);
      if (unwritten_.empty()) {
        return;
      }
      key = unwritten_.front();
      cardId = chosen_[key];
      unwritten_.pop_front();
      stored_.erase(key);
    }
    if (write(key, cardId)) {
      const std::lock_guard lock(lock_);
      stored_[key] = cardId;
    }
  }
}

bool LastUsedCards::write(const std::string& key, std::int64_t cardId) {
  try {
    store_->setValue(key, cardId);
    return true;
  } catch (const std::exception& failure) {
    log(std::string("OrlixKit: The last used card could not be stored: ") + failure.what());
    return false;
  }
}

}  // namespace orlix
