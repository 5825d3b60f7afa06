// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/SystemLog.h"
#include "orlixkit/ports/UserDefaults.h"

namespace orlix::test {

/// Queues that cannot start a thread for the next `failures` tasks.
class TroubledQueues : public BackgroundQueues {
 public:
  explicit TroubledQueues(std::shared_ptr<BackgroundQueues> queues) : queues_(std::move(queues)) {}

  int failures = 0;
  std::function<void()> onFailure;

  void global(QualityOfService service, Task task) override {
    refuse();
    queues_->global(service, std::move(task));
  }
  std::shared_ptr<OperationQueue> newOperationQueue() override {
    refuse();
    return queues_->newOperationQueue();
  }
  void close() override { queues_->close(); }

 private:
  void refuse() {
    if (failures > 0) {
      --failures;
      onFailure();
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
  }

  std::shared_ptr<BackgroundQueues> queues_;
};

/// A store on a full disk (writes throw) or on one that cannot be read either.
class TroubledStore : public UserDefaults {
 public:
  explicit TroubledStore(std::shared_ptr<UserDefaults> store) : store_(std::move(store)) {}

  enum class State { works, full, locked };
  State state = State::works;
  std::size_t writes = 0;

  std::optional<StoredValue> value(const std::string& key) const override {
    if (state == State::locked) {
      throw StoreException("The store is locked.");
    }
    return store_->value(key);
  }
  void setValue(const std::string& key, const StoredValue& value) override {
    if (state != State::works) {
      throw StoreException("The store is full.");
    }
    ++writes;
    store_->setValue(key, value);
  }

 private:
  std::shared_ptr<UserDefaults> store_;
};

/// Keeps the last line that reports a refused presentation or an exception without a handler.
class WalkLog : public SystemLog {
 public:
  std::string refused;
  std::string uncaught;

  void write(std::string_view line) override {
    if (line.starts_with("Attempt to present")) {
      refused = line;
    } else if (line.starts_with("OrlixKit: uncaught")) {
      uncaught = line;
    }
  }
};

}  // namespace orlix::test
