// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <stop_token>
#include <utility>

#include "orlixkit/ports/Clock.h"

namespace orlix {

class PosixCondition : public Condition {
 public:
  explicit PosixCondition(std::stop_token shutdown) : shutdown_(std::move(shutdown)) {}

  void lock() override { mutex_.lock(); }
  void unlock() override { mutex_.unlock(); }
  bool waitUntil(SteadyTime deadline) override;
  void signal() override;

 private:
  std::mutex mutex_;
  std::condition_variable_any changed_;
  // Counts the signals, to distinguish them from spurious wake-ups. Atomic, because a signal may be
  // sent without the lock.
  std::atomic<std::uint64_t> signals_ = 0;
  const std::stop_token shutdown_;
};

}  // namespace orlix
