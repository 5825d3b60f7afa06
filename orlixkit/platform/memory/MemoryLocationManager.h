#pragma once

#include <string>
#include <vector>

#include "orlixkit/platform/LocationManager.h"

namespace orlix {

/// A position source that knows what a test tells it, while updates are on. Main thread.
class MemoryLocationManager : public LocationManager {
 public:
  /// Nobody hears of it while updates are off.
  void sendFixes(const std::vector<LocationFix>& fixes);
  void sendError(const std::string& description);

  bool updating() const { return updating_; }
  double desiredAccuracy() const { return desiredAccuracy_; }
  double distanceFilter() const { return distanceFilter_; }
  const std::string& purpose() const { return purpose_; }
  int authorizationRequests() const { return authorizationRequests_; }

  void setDelegate(LocationManagerDelegate* delegate) override { delegate_ = delegate; }
  void setDesiredAccuracy(double metres) override { desiredAccuracy_ = metres; }
  void setDistanceFilter(double metres) override { distanceFilter_ = metres; }
  void setPurpose(const std::string& text) override { purpose_ = text; }
  void requestWhenInUseAuthorization() override { ++authorizationRequests_; }
  void startUpdatingLocation() override { updating_ = true; }
  void stopUpdatingLocation() override { updating_ = false; }

 private:
  LocationManagerDelegate* delegate_ = nullptr;
  double desiredAccuracy_ = 0;
  double distanceFilter_ = 0;
  std::string purpose_;
  int authorizationRequests_ = 0;
  bool updating_ = false;
};

}  // namespace orlix
