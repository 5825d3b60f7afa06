// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/ports/SystemLog.h"

namespace orlix {

/// Keeps the logged lines, and wipes them on `clear`: some of them hold data that must not remain
/// in memory.
class MemoryLog : public SystemLog {
 public:
  void write(std::string_view line) override;

  std::vector<std::string> lines() const;
  /// Number of lines that contain this text.
  std::size_t count(std::string_view text) const;
  bool contains(std::string_view text) const { return count(text) > 0; }
  /// All lines joined by line ends, for the message of a failing test.
  std::string text() const;
  void clear();

 private:
  mutable std::mutex mutex_;
  std::vector<SecretString> lines_;
};

}  // namespace orlix
