// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <vector>

#include "orlixkit/ports/Bundle.h"

namespace orlix {

/// Combines several bundles: a resource comes from the first that has it. Directories come first
/// and compiled-in resources last, so that a file overrides a built-in resource.
class ChainedBundle : public Bundle {
 public:
  explicit ChainedBundle(std::vector<std::shared_ptr<const Bundle>> bundles)
      : bundles_(std::move(bundles)) {}

  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override {
    for (const std::shared_ptr<const Bundle>& bundle : bundles_) {
      if (std::optional<Bytes> found = bundle->resource(name, type)) {
        return found;
      }
    }
    return std::nullopt;
  }

 private:
  std::vector<std::shared_ptr<const Bundle>> bundles_;
};

}  // namespace orlix
