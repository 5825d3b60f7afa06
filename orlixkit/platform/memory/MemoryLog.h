#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "orlixkit/platform/Secret.h"
#include "orlixkit/platform/SystemLog.h"

namespace orlix {

/// Keeps what was logged, and wipes it when it is cleared: some lines hold what must leave no
/// trace.
class MemoryLog : public SystemLog {
 public:
  void write(std::string_view line) override;

  std::vector<std::string> lines() const;
  /// How many lines hold this text.
  std::size_t count(std::string_view text) const;
  bool contains(std::string_view text) const { return count(text) > 0; }
  /// All lines, one below the other, to be shown when a test fails.
  std::string text() const;
  void clear();

 private:
  mutable std::mutex mutex_;
  std::vector<SecretString> lines_;
};

}  // namespace orlix
