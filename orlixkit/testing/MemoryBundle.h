#pragma once

#include <map>
#include <utility>

#include "orlixkit/ports/Bundle.h"

namespace orlix {

/// Resources provided by a test; empty at first. Fill it before the library first reads from it.
class MemoryBundle : public Bundle {
 public:
  void add(const std::string& name, const std::string& type, Bytes contents) {
    resources_[{name, type}] = std::move(contents);
  }
  void remove(const std::string& name, const std::string& type) { resources_.erase({name, type}); }

  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override {
    const auto found = resources_.find({name, type});
    return found == resources_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::pair<std::string, std::string>, Bytes> resources_;
};

}  // namespace orlix
