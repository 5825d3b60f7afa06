// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/OpeningTurn.h"

#include <mutex>

#include "orlixkit/host/Host.h"
#include "orlixkit/records/Failures.h"

namespace orlix {

OpeningTurn::OpeningTurn()
    : clock_(Host::current().ports().clock), condition_(clock_->newCondition()) {}

void OpeningTurn::lock() {
  const std::lock_guard held(*condition_);
  while (taken_) {
    // The holder opens a session, which has its own time limit. Only a shutdown ends this wait
    // sooner, recognised by a return before the deadline.
    const SteadyTime deadline = clock_->steadyNow() + std::chrono::hours(24);
    if (!condition_->waitUntil(deadline) && clock_->steadyNow() < deadline) {
      throw NetworkException();
    }
  }
  taken_ = true;
}

void OpeningTurn::unlock() {
  const std::lock_guard held(*condition_);
  taken_ = false;
  condition_->signal();
}

}  // namespace orlix
