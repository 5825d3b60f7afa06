#pragma once

#include <memory>

#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/LocationManager.h"
#include "orlixkit/platform/MainQueue.h"

namespace orlix {

/// A position source for a machine that has none: each start brings one fix, always at the same
/// place, dated now, as the main queue's next task. A start while it runs changes nothing.
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
  // From start to stop; a fix whose start is no longer the present one is not given.
  std::shared_ptr<LocationManagerDelegate*> updates_;
};

}  // namespace orlix
