// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <stop_token>

#include "orlixkit/ports/Clock.h"

namespace orlix {

/// The machine's clocks. `shutdown` is the host's: once it is requested nothing waits any more.
class PosixClock : public Clock {
 public:
  explicit PosixClock(std::stop_token shutdown) : shutdown_(std::move(shutdown)) {}

  SteadyTime steadyNow() const override;
  CalendarTime now() const override;
  bool sleep(Duration duration) override;
  std::unique_ptr<Condition> newCondition() override;

 private:
  const std::stop_token shutdown_;
};

}  // namespace orlix
