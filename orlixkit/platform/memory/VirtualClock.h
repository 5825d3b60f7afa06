#pragma once

#include <memory>

#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/memory/VirtualWorld.h"

namespace orlix {

/// The world's time, as the library sees it. The calendar starts at 2024-03-01 10:00:00 UTC, in a
/// place two hours east of it, so that whoever mixes up the two is found out.
class VirtualClock : public Clock {
 public:
  explicit VirtualClock(std::shared_ptr<VirtualWorld> world);

  /// Sets the calendar, as a user does; the steady clock goes on.
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
