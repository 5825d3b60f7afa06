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
  void setUtcOffset(std::chrono::seconds offset) { utcOffset_ = offset; }

  SteadyTime steadyNow() const override { return world_->now(); }
  CalendarTime now() const override;
  std::chrono::seconds utcOffset(CalendarTime) const override { return utcOffset_; }
  bool sleep(Duration duration) override;
  std::unique_ptr<Condition> newCondition() override;

 private:
  std::shared_ptr<VirtualWorld> world_;
  CalendarTime calendarAtSteadyZero_;
  std::chrono::seconds utcOffset_{7200};
};

}  // namespace orlix
