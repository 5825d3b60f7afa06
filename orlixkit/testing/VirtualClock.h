// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/testing/VirtualWorld.h"

namespace orlix {

/// The world's time as a Clock. The calendar starts at 2024-03-01 10:00:00 UTC, and local time is
/// two hours ahead, so that code that confuses the two fails a test.
class VirtualClock : public Clock {
 public:
  explicit VirtualClock(std::shared_ptr<VirtualWorld> world);

  /// Sets the calendar, as a user does; the steady clock is unaffected.
  void setNow(CalendarTime now);

  SteadyTime steadyNow() const override { return world_->now(); }
  CalendarTime now() const override;
  bool sleep(Duration duration) override;
  std::unique_ptr<Condition> newCondition() override;

 private:
  std::shared_ptr<VirtualWorld> world_;
  CalendarTime calendarAtSteadyZero_;
};

}  // namespace orlix
