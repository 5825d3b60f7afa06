// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/LocationUtil.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "orlixkit/host/Host.h"

namespace orlix {

namespace {

/// Metres.
constexpr double kNearestTen = 10.0;
constexpr double kDistanceFilter = 5.0;

void logFix(std::string_view method, const LocationFix& fix) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(fix.timestamp);
  log(fmt::format(
      "Location update {} method. Timestamp: {:%Y-%m-%d %H:%M:%S} +0000, Accuracy: {:f}", method,
      fmt::gmtime(std::chrono::system_clock::to_time_t(seconds)), fix.horizontalAccuracy));
}

}  // namespace

LocationUtil& LocationUtil::sharedLocationUtil() { return Host::current().shared<LocationUtil>(); }

LocationUtil::~LocationUtil() {
  if (manager_) {
    manager_->stop();
  }
}

void LocationUtil::startLocationDetection() {
  log("Starting location updates");
  if (!manager_) {
    manager_ = Host::current().ports().locationManager;
  }
  if (manager_) {
    manager_->start({.desiredAccuracy = kNearestTen,
                     .distanceFilter = kDistanceFilter,
                     .purpose = "Your location is used to help prevent fraud."},
                    *this);
  }
}

void LocationUtil::stopLocationDetection() {
  log("Stop location updates.");
  if (manager_) {
    manager_->stop();
  }
}

void LocationUtil::didUpdateLocations(const std::vector<LocationFix>& fixes) {
  if (fixes.empty()) {
    return;  // keep the last fix
  }
  // Use the newest fix whatever its accuracy or age: as a fraud signal a rough position is better
  // than none.
  location_ = fixes.back();
  logFix("iOS6", *location_);
}

void LocationUtil::didUpdateToLocation(const LocationFix& newLocation,
                                       const LocationFix& /*oldLocation*/) {
  location_ = newLocation;
  logFix("iOS5", *location_);
}

void LocationUtil::didFailWithError(const std::string& description) {
  log("Location error: " + description);
  // Keep the last fix and send it with later purchases.
  manager_->stop();  // which has called this
}

}  // namespace orlix
