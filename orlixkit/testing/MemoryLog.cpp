// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/MemoryLog.h"

#include <algorithm>

namespace orlix {

void MemoryLog::write(std::string_view line) {
  const std::lock_guard lock(mutex_);
  lines_.emplace_back(line);
}

std::vector<std::string> MemoryLog::lines() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> copies;
  for (const SecretString& line : lines_) {
    copies.emplace_back(line.text());
  }
  return copies;
}

std::size_t MemoryLog::count(std::string_view text) const {
  const std::lock_guard lock(mutex_);
  return static_cast<std::size_t>(std::count_if(
      lines_.begin(), lines_.end(),
      [text](const SecretString& line) { return line.text().find(text) != std::string::npos; }));
}

std::string MemoryLog::text() const {
  std::string all;
  for (const std::string& line : lines()) {
    all += line + "\n";
  }
  return all;
}

void MemoryLog::clear() {
  const std::lock_guard lock(mutex_);
  lines_.clear();
}

}  // namespace orlix
