// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "orlixkit/ports/Device.h"

namespace orlix {

/// Rules that every device keeps. `Platform` offers one: Device& device();
template <class Platform>
class DeviceContract : public testing::Test {
 protected:
  Platform platform;
};
TYPED_TEST_SUITE_P(DeviceContract);

TYPED_TEST_P(DeviceContract, DescribesItselfAlikeEachTime) {
  const Device& device = this->platform.device();
  EXPECT_THAT(
      device.vendorIdentifier(),
      testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"));
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(device.vendorIdentifier(), this->platform.device().vendorIdentifier());
    EXPECT_NE(device.model(), "");
    EXPECT_NE(device.systemVersion(), "");
  }
  const std::chrono::seconds offset = device.utcOffset(CalendarTime{});
  EXPECT_LE(std::chrono::abs(offset), std::chrono::hours(18));
}

REGISTER_TYPED_TEST_SUITE_P(DeviceContract, DescribesItselfAlikeEachTime);

}  // namespace orlix
