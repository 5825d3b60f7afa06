// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>

#include "orlixkit/ports/Secret.h"

namespace orlix {

/// The result of a card holder's authentication, to be sent to the server.
struct VelloSecureCodeData {
  std::int64_t secureCodeId = 0;
  std::optional<SecretString> PaRes;
};

}  // namespace orlix
