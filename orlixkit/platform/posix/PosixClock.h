#pragma once

#include <memory>
#include <stop_token>

#include "orlixkit/platform/Clock.h"

namespace orlix {

class WaitingWork;

/// The machine's clocks. `shutdown` is the host's: once it is requested nothing waits any more.
/// `work`, which may be none, is what threads attend to while they wait on a condition.
class PosixClock : public Clock {
 public:
  explicit PosixClock(std::stop_token shutdown, std::shared_ptr<WaitingWork> work = nullptr)
      : shutdown_(std::move(shutdown)), work_(std::move(work)) {}

  SteadyTime steadyNow() const override;
  CalendarTime now() const override;
  bool sleep(Duration duration) override;
  std::unique_ptr<Condition> newCondition() override;

 private:
  const std::stop_token shutdown_;
  const std::shared_ptr<WaitingWork> work_;
};

}  // namespace orlix
