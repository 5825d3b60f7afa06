// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/LocationManager.h"

namespace orlix {

/// Rules that every position source keeps. `Platform` is made for each test:
///   LocationManager& locationManager();
///   void bringFix();  // lets the fix of the last start come, if updates are on, and waits for it
template <class Platform>
class LocationManagerContract : public testing::Test {
 protected:
  struct Listener : LocationManagerDelegate {
    void didUpdateLocations(const std::vector<LocationFix>& fixes) override {
      EXPECT_FALSE(fixes.empty());
      ++heard;
    }
    void didFailWithError(const std::string& description) override { ADD_FAILURE() << description; }
    int heard = 0;
  };
  Listener first;
  Listener second;
  Platform platform;
  LocationManager& manager = platform.locationManager();
};
TYPED_TEST_SUITE_P(LocationManagerContract);

TYPED_TEST_P(LocationManagerContract, AStartBringsAFixAfterItHasReturned) {
  this->manager.start({.desiredAccuracy = 10, .distanceFilter = 5, .purpose = "test"}, this->first);
  EXPECT_EQ(this->first.heard, 0);
  this->platform.bringFix();
  EXPECT_EQ(this->first.heard, 1);
}

TYPED_TEST_P(LocationManagerContract, ASecondStartChangesNothing) {
  this->manager.start({}, this->first);
  this->manager.start({}, this->second);
  this->platform.bringFix();
  EXPECT_EQ(this->first.heard, 1);
  EXPECT_EQ(this->second.heard, 0);
}

TYPED_TEST_P(LocationManagerContract, NothingIsHeardAfterAStopAndANewStartHasItsOwnDelegate) {
  this->manager.stop();
  this->manager.start({}, this->first);
  this->manager.stop();
  this->platform.bringFix();
  this->manager.start({}, this->second);
  this->platform.bringFix();
  EXPECT_EQ(this->first.heard, 0);
  EXPECT_EQ(this->second.heard, 1);
}

REGISTER_TYPED_TEST_SUITE_P(LocationManagerContract, AStartBringsAFixAfterItHasReturned,
                            ASecondStartChangesNothing,
                            NothingIsHeardAfterAStopAndANewStartHasItsOwnDelegate);

}  // namespace orlix
