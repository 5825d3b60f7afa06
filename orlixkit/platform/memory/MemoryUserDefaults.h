#pragma once

#include <map>
#include <mutex>
#include <variant>
#include <vector>

#include "orlixkit/platform/UserDefaults.h"

namespace orlix {

/// A store in memory. Give the same one to two hosts, one after the other, and the second is the
/// application after a restart.
class MemoryUserDefaults : public UserDefaults {
 public:
  std::optional<Bytes> dataForKey(const std::string& key) const override;
  std::optional<std::string> stringForKey(const std::string& key) const override;
  std::int64_t integerForKey(const std::string& key) const override;
  void setData(const std::string& key, const Bytes& value) override;
  void setString(const std::string& key, const std::string& value) override;
  void setInteger(const std::string& key, std::int64_t value) override;

  /// From now on every write is refused, as by a full disk.
  void setFailing(bool failing);
  /// From now on every read fails, as of a damaged file.
  void setUnreadable(bool unreadable);
  std::vector<std::string> keys() const;
  /// Does any value, in its stored form, hold this text?
  bool holds(std::string_view text) const;

 private:
  using Value = std::variant<Bytes, std::string, std::int64_t>;
  template <class T>
  std::optional<T> read(const std::string& key) const;
  void write(const std::string& key, Value value);

  mutable std::mutex mutex_;
  std::map<std::string, Value> values_;
  bool failing_ = false;
  bool unreadable_ = false;
};

}  // namespace orlix
