#pragma once

#include <stop_token>

#include "orlixkit/platform/Clock.h"

namespace orlix {

/// The machine's clocks. `shutdown` is the host's: once it is requested nothing waits any more.
class PosixClock : public Clock {
 public:
  explicit PosixClock(std::stop_token shutdown) : shutdown_(std::move(shutdown)) {}

  SteadyTime steadyNow() const override;
  CalendarTime now() const override;
  std::chrono::seconds utcOffset(CalendarTime at) const override;
  bool sleep(Duration duration) override;
  std::unique_ptr<Condition> newCondition() override;

 private:
  std::stop_token shutdown_;
};

}  // namespace orlix
