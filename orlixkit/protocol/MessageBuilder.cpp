// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/MessageBuilder.h"

#include <stdexcept>

#include "orlixkit/protocol/RequestBody.h"

namespace orlix {

std::optional<SecretBytes> MessageBuilder::buildEstablishSession(
    const std::optional<std::string>& version, const std::string& serial,
    std::shared_ptr<PersistableObject> persistableObject, Platform& platform,
    const std::string& timeZone) {
  if (!platform.libKey) {
    platform.libKey = "";
  }
  RequestBody device;
  device.setRequired("appVersion", platform.appVersion);
  device.setRequired("device", platform.device);
  device.setRequired("node", platform.node);
  device.setRequired("os", platform.os);
  device.setRequired("libKey", platform.libKey);
  device.setRequired("osVersion", platform.osVersion);

  if (!persistableObject) {
    persistableObject = std::make_shared<PersistableObject>();
  }
  if (!persistableObject->ssToken) {
    persistableObject->ssToken = "";
  }

  const RequestBody body{
      {"deviceSerial", serial},   {"appVersion", version.value_or("UNKNOWN")},
      {"hasDoubleSession", true}, {"ssToken", *persistableObject->ssToken},
      {"timeZone", timeZone},     {"platform", device},
  };
  try {
    return body.write();
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

}  // namespace orlix
