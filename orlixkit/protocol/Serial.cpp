// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/Serial.h"

namespace orlix {

namespace {

void append(std::string& serial, char tag, const std::optional<std::string>& value) {
  if (value && !value->empty()) {
    serial.append("[").append(1, tag).append(":").append(*value).append("],");
  }
}

}  // namespace

std::string Serial::buildSerial() const {
  std::string serial;
  append(serial, 'i', imei);
  append(serial, 's', imsi);
  // The last three share one tag; keep it, since the server identifies devices by these texts.
  append(serial, 'p', phoneId);
  append(serial, 'p', wifiMac);
  append(serial, 'p', uid);
  if (serial.size() >= 2) {
    serial.pop_back();
  }
  return serial;
}

}  // namespace orlix
