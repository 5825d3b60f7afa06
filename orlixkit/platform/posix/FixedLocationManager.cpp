#include "orlixkit/platform/posix/FixedLocationManager.h"

namespace orlix {

namespace {

constexpr double accuracyInMetres = 10;

}  // namespace

FixedLocationManager::FixedLocationManager(double latitude, double longitude,
                                           std::shared_ptr<MainQueue> mainQueue,
                                           std::shared_ptr<Clock> clock)
    : latitude_(latitude),
      longitude_(longitude),
      mainQueue_(std::move(mainQueue)),
      clock_(std::move(clock)),
      delegate_(std::make_shared<LocationManagerDelegate*>(nullptr)) {}

void FixedLocationManager::startUpdatingLocation() {
  if (updates_) {
    return;  // its fix has come, or is still to come
  }
  updates_ = std::make_shared<int>(0);
  const LocationFix fix{latitude_, longitude_, accuracyInMetres, clock_->now()};
  mainQueue_->async([fix, delegate = delegate_, update = std::weak_ptr(updates_)] {
    if (!update.expired() && *delegate != nullptr) {
      (*delegate)->didUpdateLocations({fix});
    }
  });
}

void FixedLocationManager::stopUpdatingLocation() { updates_.reset(); }

}  // namespace orlix
