// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>

#include "orlixkit/ports/Clock.h"

namespace orlix {

/// Properties of the device. Every text is constant while the process runs.
class Device {
 public:
  virtual ~Device() = default;
  /// A UUID text (RFC 4122, 36 characters), stable per installation of the application.
  virtual std::string vendorIdentifier() const = 0;
  virtual std::string systemVersion() const = 0;
  /// The machine field of uname.
  virtual std::string model() const = 0;
  /// Offset of the device's local time from UTC at `at`, positive to the east.
  virtual std::chrono::seconds utcOffset(CalendarTime at) const = 0;
};

}  // namespace orlix
