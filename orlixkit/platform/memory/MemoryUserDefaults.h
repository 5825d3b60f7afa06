#pragma once

#include <map>
#include <mutex>
#include <vector>

#include "orlixkit/platform/UserDefaults.h"

namespace orlix {

/// A store in memory. Give the same one to two hosts, one after the other, and the second is the
/// application after a restart.
class MemoryUserDefaults : public UserDefaults {
 public:
  std::optional<StoredValue> value(const std::string& key) const override;
  void setValue(const std::string& key, const StoredValue& value) override;

  /// From now on every write is refused, as by a full disk.
  void setFailing(bool failing);
  /// From now on every read fails, as of a damaged file.
  void setUnreadable(bool unreadable);
  std::vector<std::string> keys() const;
  /// Does any value, in its stored form, hold this text?
  bool holds(std::string_view text) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, StoredValue> values_;
  bool failing_ = false;
  bool unreadable_ = false;
};

}  // namespace orlix
