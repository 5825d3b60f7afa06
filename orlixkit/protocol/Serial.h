// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace orlix {

/// Identity of the device. Every field may be absent; this platform sets only `phoneId`, the vendor
/// identifier, or, when no field is set, a random `uid`.
struct Serial {
  std::optional<std::string> imei;
  std::optional<std::string> imsi;
  std::optional<std::string> uid;
  std::optional<std::string> wifiMac;
  std::optional<std::string> phoneId;

  /// The serial text, such as "[p:4F5B…]"; empty when no field is set.
  std::string buildSerial() const;
};

}  // namespace orlix
