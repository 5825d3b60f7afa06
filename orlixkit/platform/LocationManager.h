#pragma once

#include <string>
#include <vector>

#include "orlixkit/platform/Clock.h"

namespace orlix {

struct LocationFix {
  double latitude = 0;            ///< degrees, north positive
  double longitude = 0;           ///< degrees, east positive
  double horizontalAccuracy = 0;  ///< metres
  CalendarTime timestamp;
};

class LocationManagerDelegate {
 public:
  virtual ~LocationManagerDelegate() = default;
  virtual void didUpdateLocations(const std::vector<LocationFix>& fixes) = 0;
  virtual void didFailWithError(const std::string& description) = 0;
};

/// The device's position source. Main thread only, callbacks included.
class LocationManager {
 public:
  virtual ~LocationManager() = default;
  /// Not owned; must stay until replaced or the updates are stopped.
  virtual void setDelegate(LocationManagerDelegate* delegate) = 0;
  virtual void setDesiredAccuracy(double metres) = 0;
  virtual void setDistanceFilter(double metres) = 0;
  virtual void setPurpose(const std::string& text) = 0;
  virtual void requestWhenInUseAuthorization() = 0;
  /// Changes nothing while updates are on: none that is under way is lost.
  virtual void startUpdatingLocation() = 0;
  virtual void stopUpdatingLocation() = 0;
};

}  // namespace orlix
