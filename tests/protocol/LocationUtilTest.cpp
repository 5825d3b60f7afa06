// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "orlixkit/protocol/LocationUtil.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix::test {

namespace {

LocationFix fix(double latitude, double accuracy) {
  // 2024-03-01 10:00:00.5 UTC
  return {latitude, 28.0, accuracy, CalendarTime{std::chrono::milliseconds(1709287200500)}};
}

}  // namespace

TEST(LocationUtil, KeepsTheNewestFixWhateverItsAccuracyAndAnErrorStopsTheUpdates) {
  MemoryHost host;
  LocationUtil& util = LocationUtil::sharedLocationUtil();
  EXPECT_FALSE(util.location());
  util.startLocationDetection();
  MemoryLocationManager& manager = host.locationManager();
  EXPECT_EQ(manager.options().desiredAccuracy, 10.0);
  EXPECT_EQ(manager.options().distanceFilter, 5.0);
  EXPECT_EQ(manager.options().purpose, "Your location is used to help prevent fraud.");
  manager.sendFixes({fix(1, 5), fix(2, 65.25)});
  manager.sendFixes({});
  EXPECT_EQ(util.location()->latitude, 2.0);
  util.didUpdateToLocation(fix(3, 5000), fix(2, 5));
  util.stopLocationDetection();
  EXPECT_FALSE(manager.updating());
  util.startLocationDetection();
  manager.sendError("denied");
  EXPECT_FALSE(manager.updating());
  EXPECT_EQ(util.location()->latitude, 3.0);
}

}  // namespace orlix::test
