// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <mutex>
#include <vector>

#include "orlixkit/ports/UserDefaults.h"

namespace orlix {

/// A store in memory. Pass the same store to two hosts in turn to test a restart of the
/// application.
class MemoryUserDefaults : public UserDefaults {
 public:
  std::optional<StoredValue> value(const std::string& key) const override;
  void setValue(const std::string& key, const StoredValue& value) override;

  /// From now on every write fails, as on a full disk.
  void setFailing(bool failing);
  /// From now on every read fails, as from a damaged file.
  void setUnreadable(bool unreadable);
  std::vector<std::string> keys() const;
  /// Whether any value, in its stored form, contains this text.
  bool holds(std::string_view text) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, StoredValue> values_;
  bool failing_ = false;
  bool unreadable_ = false;
};

}  // namespace orlix
