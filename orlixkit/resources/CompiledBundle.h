#pragma once

#include <optional>
#include <string>

#include "orlixkit/platform/Bundle.h"

namespace orlix {

/// The library's own resources, out of the program itself. What a host falls back on when its
/// resource folder lacks a file, or when it has no such folder.
class CompiledBundle : public Bundle {
 public:
  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override;
};

}  // namespace orlix
