// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// An answer without data. The body is not parsed and no field is ever set; only the success of the
/// request counts.
struct MTApiResponse {
  std::optional<std::string> status;
  bool hasStatus = false;

  MTApiResponse& parseFromData(ByteView data);
};

}  // namespace orlix
