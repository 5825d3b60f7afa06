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

struct LocationOptions {
  double desiredAccuracy = 0;  ///< metres; 0: as good as the source can
  double distanceFilter = 0;   ///< metres; steps below it are not reported
  std::string purpose;         ///< shown to the user who is asked for permission
};

/// The device's position source. Main thread only, callbacks included.
class LocationManager {
 public:
  virtual ~LocationManager() = default;
  /// Asks the user for permission, where the platform requires one, and starts the updates. The
  /// delegate is not called before this has returned; it is not owned and must stay until the
  /// updates are stopped. While updates are on, this changes nothing: none under way is lost.
  virtual void start(const LocationOptions& options, LocationManagerDelegate& delegate) = 0;
  /// The delegate is not called any more.
  virtual void stop() = 0;
};

}  // namespace orlix
