#pragma once

#include <string_view>
#include <vector>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// A file of this folder as it was at the build. All views last as long as the process.
struct CompiledResource {
  std::string_view name;
  std::string_view type;
  ByteView bytes;
};

/// All of them; the table is made by the build.
std::vector<CompiledResource> compiledResources();

}  // namespace orlix
