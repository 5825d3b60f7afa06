// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/VirtualClock.h"

#include "orlixkit/testing/VirtualCondition.h"

namespace orlix {

VirtualClock::VirtualClock(std::shared_ptr<VirtualWorld> world) : world_(std::move(world)) {
  using std::chrono::sys_days;
  setNow(sys_days{std::chrono::year{2024} / 3 / 1} + std::chrono::hours(10));
}

void VirtualClock::setNow(CalendarTime now) {
  calendarAtSteadyZero_ = now - world_->now().time_since_epoch();
}

CalendarTime VirtualClock::now() const {
  return calendarAtSteadyZero_ + world_->now().time_since_epoch();
}

bool VirtualClock::sleep(Duration duration) {
  // This channel is never signalled: only time and shutdown end the wait.
  const int channel = 0;
  const Wake woken = world_->wait("sleeps", &channel, laterBy(world_->now(), duration));
  return woken != Wake::shutDown;
}

std::unique_ptr<Condition> VirtualClock::newCondition() {
  return std::make_unique<VirtualCondition>(world_);
}

}  // namespace orlix
