// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orlix::test {

/// Looks for byte sequences in all of this process's memory that it can write: heaps, stacks,
/// static data. What it looks for it keeps masked, so that it never finds itself.
class MemoryScan {
 public:
  /// Where a sequence was found. What surrounds it has been read with it: other threads may
  /// overwrite it at any time.
  struct Place {
    std::string_view before;  ///< a few bytes
    std::string_view behind;
  };
  /// A sequence to look for, given unit by unit so that it is never complete in memory.
  struct Needle {
    std::string name;
    std::vector<std::uint8_t> masked;
    /// Places that are no findings. Empty: none.
    std::function<bool(const Place&)> isExempt = {};
    void add(std::uint8_t byte) { masked.push_back(byte ^ kMask); }
  };
  static constexpr std::uint8_t kMask = 0xA5;

  void lookFor(Needle needle) { needles_.push_back(std::move(needle)); }
  /// A sequence of which `unitAt` gives each byte.
  template <class UnitAt>
  void lookFor(const char* name, std::size_t size, const UnitAt& unitAt) {
    Needle needle{name, {}};
    for (std::size_t i = 0; i < size; ++i) {
      needle.add(static_cast<std::uint8_t>(unitAt(i)));
    }
    needles_.push_back(std::move(needle));
  }
  /// Name and place of whatever is there.
  std::vector<std::string> findings() const;
  /// The findings of this name only.
  std::size_t count(std::string_view name) const;

 private:
  std::vector<Needle> needles_;
};

}  // namespace orlix::test
