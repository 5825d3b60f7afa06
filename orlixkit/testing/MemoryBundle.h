// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "orlixkit/ports/Bundle.h"
#include "orlixkit/resources/CompiledBundle.h"

namespace orlix {

/// Resources of a test: those that are compiled into the library, those that the test adds in their
/// place or besides, less those that it removes. Change it before the library first reads from it.
class MemoryBundle : public Bundle {
 public:
  void add(const std::string& name, const std::string& type, Bytes contents) {
    resources_[{name, type}] = std::move(contents);
  }
  void remove(const std::string& name, const std::string& type) {
    resources_[{name, type}] = std::nullopt;
  }

  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override {
    const auto found = resources_.find({name, type});
    return found == resources_.end() ? compiledIn_.resource(name, type) : found->second;
  }

 private:
  CompiledBundle compiledIn_;
  std::map<std::pair<std::string, std::string>, std::optional<Bytes>> resources_;
};

}  // namespace orlix
