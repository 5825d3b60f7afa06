// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "orlixkit/ports/Clock.h"

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
  double desiredAccuracy = 0;  ///< metres; 0: the best that the source offers
  double distanceFilter = 0;   ///< metres; smaller movements are not reported
  std::string purpose;         ///< shown in the permission prompt
};

/// The device's position source. Main thread only, callbacks included.
class LocationManager {
 public:
  virtual ~LocationManager() = default;
  /// Asks the user for permission, where the platform requires it, and starts the updates. The
  /// delegate is not called before this returns; it is not owned and must outlive the updates. Has
  /// no effect while updates are on; pending updates are not lost.
  virtual void start(const LocationOptions& options, LocationManagerDelegate& delegate) = 0;
  /// Stops the updates; the delegate is no longer called.
  virtual void stop() = 0;
};

}  // namespace orlix
