// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ports/Device.h"

namespace orlix {

/// A device with properties set by a test. Set them before the library first reads them.
class MemoryDevice : public Device {
 public:
  std::string vendor = "8D1F2C3B-4A5E-4F60-9B7A-1C2D3E4F5A6B";
  std::string system = "17.4";
  std::string machine = "x86_64";
  std::chrono::seconds offset{7200};

  std::string vendorIdentifier() const override { return vendor; }
  std::string systemVersion() const override { return system; }
  std::string model() const override { return machine; }
  std::chrono::seconds utcOffset(CalendarTime) const override { return offset; }
};

}  // namespace orlix
