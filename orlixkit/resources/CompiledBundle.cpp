// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/resources/CompiledBundle.h"

#include "orlixkit/resources/CompiledResources.h"

namespace orlix {

std::optional<Bytes> CompiledBundle::resource(const std::string& name,
                                              const std::string& type) const {
  for (const CompiledResource& resource : compiledResources()) {
    if (resource.name == name && resource.type == type) {
      return Bytes(resource.bytes.begin(), resource.bytes.end());
    }
  }
  return std::nullopt;
}

}  // namespace orlix
