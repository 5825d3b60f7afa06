// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/ports/LocationManager.h"

namespace orlix {

/// Runs the host's position source while a screen requires it and keeps the last fix, also after a
/// stop. Without a position source there is never a fix.
///
/// Main thread only.
class LocationUtil : public LocationManagerDelegate {
 public:
  static LocationUtil& sharedLocationUtil();

  LocationUtil() = default;
  ~LocationUtil() override;
  LocationUtil(const LocationUtil&) = delete;
  LocationUtil& operator=(const LocationUtil&) = delete;

  void startLocationDetection();
  void stopLocationDetection();
  const std::optional<LocationFix>& location() const { return location_; }

  void didUpdateLocations(const std::vector<LocationFix>& fixes) override;
  /// Older form of the same callback.
  void didUpdateToLocation(const LocationFix& newLocation, const LocationFix& oldLocation);
  void didFailWithError(const std::string& description) override;

 private:
  std::shared_ptr<LocationManager> manager_;
  std::optional<LocationFix> location_;
};

}  // namespace orlix
