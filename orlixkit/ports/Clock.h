// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <memory>

namespace orlix {

using Duration = std::chrono::nanoseconds;
/// A point on the steady clock. Deadlines use it, so that setting the calendar clock neither
/// shortens nor lengthens a wait.
using SteadyTime = std::chrono::time_point<std::chrono::steady_clock, Duration>;
using CalendarTime = std::chrono::time_point<std::chrono::system_clock, Duration>;

/// A condition variable with its own lock, to wait on from a background task.
class Condition {
 public:
  virtual ~Condition() = default;

  virtual void lock() = 0;
  virtual void unlock() = 0;

  /// Called with the lock held; releases it while waiting and reacquires it before returning.
  /// True after a signal or a spurious wake-up (test the awaited condition again); false when the
  /// deadline has passed or the host is shutting down.
  virtual bool waitUntil(SteadyTime deadline) = 0;

  /// Wakes every waiter. The lock may be held or not.
  virtual void signal() = 0;
};

/// The current time, and every operation by which the library waits.
///
/// Thread: every operation may be called from any thread.
/// After the host's shutdown `sleep` and `waitUntil` return false at once.
class Clock {
 public:
  virtual ~Clock() = default;

  virtual SteadyTime steadyNow() const = 0;
  virtual CalendarTime now() const = 0;

  /// Blocks the calling thread. False when the host's shutdown interrupted the sleep.
  virtual bool sleep(Duration duration) = 0;

  /// The condition must not outlive the clock's host.
  virtual std::unique_ptr<Condition> newCondition() = 0;
};

}  // namespace orlix
