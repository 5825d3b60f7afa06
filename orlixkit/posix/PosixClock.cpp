// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixClock.h"

#include <condition_variable>
#include <mutex>

#include "orlixkit/posix/PosixCondition.h"

namespace orlix {

SteadyTime PosixClock::steadyNow() const { return std::chrono::steady_clock::now(); }

CalendarTime PosixClock::now() const { return std::chrono::system_clock::now(); }

bool PosixClock::sleep(Duration duration) {
  const SteadyTime now = steadyNow();
  // The longest sleeps end with the clock's range rather than wrap around to the past.
  const SteadyTime deadline =
      duration > SteadyTime::max() - now ? SteadyTime::max() : now + duration;
  std::mutex mutex;
  std::condition_variable_any never;
  std::unique_lock lock(mutex);
  never.wait_until(lock, shutdown_, deadline, [] { return false; });
  return !shutdown_.stop_requested();
}

std::unique_ptr<Condition> PosixClock::newCondition() {
  return std::make_unique<PosixCondition>(shutdown_);
}

}  // namespace orlix
