#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>

#include "orlixkit/platform/Clock.h"

namespace orlix {

class WaitingWork;

class PosixCondition : public Condition {
 public:
  PosixCondition(std::stop_token shutdown, std::shared_ptr<WaitingWork> work)
      : shutdown_(std::move(shutdown)), work_(std::move(work)) {}

  void lock() override { mutex_.lock(); }
  void unlock() override { mutex_.unlock(); }
  bool waitUntil(SteadyTime deadline) override;
  void signal() override;

 private:
  void workUntil(const std::function<bool()>& signalled, SteadyTime deadline);

  std::mutex mutex_;
  std::condition_variable_any changed_;
  // Counts the signals, so that a waiter knows one from a wake-up for no reason. Atomic, because a
  // signal may be given without the lock.
  std::atomic<std::uint64_t> signals_ = 0;
  std::atomic<int> working_ = 0;  // waiters that attend to `work_` meanwhile
  const std::stop_token shutdown_;
  const std::shared_ptr<WaitingWork> work_;
};

}  // namespace orlix
