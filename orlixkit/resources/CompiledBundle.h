// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/ports/Bundle.h"

namespace orlix {

/// The library's resources compiled into the program, used when a host has no resource folder or
/// its folder lacks a file.
class CompiledBundle : public Bundle {
 public:
  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override;
};

}  // namespace orlix
