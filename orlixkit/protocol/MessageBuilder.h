// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/protocol/Platform.h"
#include "orlixkit/security/PersistableObject.h"

namespace orlix {

class MessageBuilder {
 public:
  /// Body of the request that opens a session, as pretty-printed JSON; absent when it cannot be
  /// written (a text that is not UTF-8). Fills absent values in the caller's records: the
  /// platform's `libKey` and the record's `ssToken` become empty texts.
  /// Throws std::invalid_argument when another field of the platform is absent.
  static std::optional<SecretBytes> buildEstablishSession(
      const std::optional<std::string>& version, const std::string& serial,
      std::shared_ptr<PersistableObject> persistableObject, Platform& platform,
      const std::string& timeZone);
};

}  // namespace orlix
