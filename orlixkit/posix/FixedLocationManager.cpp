// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/FixedLocationManager.h"

namespace orlix {

namespace {

constexpr double kAccuracyInMetres = 10;

}  // namespace

FixedLocationManager::FixedLocationManager(double latitude, double longitude,
                                           std::shared_ptr<MainQueue> mainQueue,
                                           std::shared_ptr<Clock> clock)
    : latitude_(latitude),
      longitude_(longitude),
      mainQueue_(std::move(mainQueue)),
      clock_(std::move(clock)) {}

void FixedLocationManager::start(const LocationOptions& /*options*/,
                                 LocationManagerDelegate& delegate) {
  if (updates_) {
    return;  // already started
  }
  updates_ = std::make_shared<LocationManagerDelegate*>(&delegate);
  const LocationFix fix{latitude_, longitude_, kAccuracyInMetres, clock_->now()};
  mainQueue_->async([fix, updates = std::weak_ptr(updates_)] {
    if (const auto current = updates.lock()) {
      (*current)->didUpdateLocations({fix});
    }
  });
}

}  // namespace orlix
