// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>
#include <vector>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// A file of this folder, embedded at build time. All views are valid for the life of the process.
struct CompiledResource {
  std::string_view name;
  std::string_view type;
  ByteView bytes;
};

/// All resources; the build generates the table.
std::vector<CompiledResource> compiledResources();

}  // namespace orlix
