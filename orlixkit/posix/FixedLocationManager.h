// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/LocationManager.h"
#include "orlixkit/ports/MainQueue.h"

namespace orlix {

/// A position source for a machine without one: each start delivers one fix, always at the same
/// place and with the current time, as a task of the main queue. A start while it runs has no
/// effect.
class FixedLocationManager : public LocationManager {
 public:
  FixedLocationManager(double latitude, double longitude, std::shared_ptr<MainQueue> mainQueue,
                       std::shared_ptr<Clock> clock);

  void start(const LocationOptions& options, LocationManagerDelegate& delegate) override;
  void stop() override { updates_.reset(); }

 private:
  const double latitude_;
  const double longitude_;
  const std::shared_ptr<MainQueue> mainQueue_;
  const std::shared_ptr<Clock> clock_;
  // Set from start to stop; a fix of an earlier start is not delivered.
  std::shared_ptr<LocationManagerDelegate*> updates_;
};

}  // namespace orlix
