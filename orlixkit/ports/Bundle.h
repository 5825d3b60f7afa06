// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Files that come with the application or the library.
/// Thread: any.
class Bundle {
 public:
  virtual ~Bundle() = default;
  /// Contents of the resource `name` with the file extension `type` ("cer", "otf", "plist"); absent
  /// when there is no such resource or it cannot be read.
  virtual std::optional<Bytes> resource(const std::string& name, const std::string& type) const = 0;
};

}  // namespace orlix
