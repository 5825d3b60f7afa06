#pragma once

#include <optional>
#include <string>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// An answer without data. It is not even looked at, so nothing is ever set: what counts is that
/// the request went through.
struct MTApiResponse {
  std::optional<std::string> status;
  bool hasStatus = false;

  MTApiResponse& parseFromData(ByteView data);
};

}  // namespace orlix
