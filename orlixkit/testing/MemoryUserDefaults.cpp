// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/MemoryUserDefaults.h"

#include <algorithm>

namespace orlix {

std::optional<StoredValue> MemoryUserDefaults::value(const std::string& key) const {
  const std::lock_guard lock(mutex_);
  if (unreadable_) {
    throw StoreException("MemoryUserDefaults: the value of " + key + " cannot be read");
  }
  const auto found = values_.find(key);
  return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void MemoryUserDefaults::setValue(const std::string& key, const StoredValue& value) {
  const std::lock_guard lock(mutex_);
  if (failing_) {
    throw StoreException("MemoryUserDefaults: the value of " + key + " cannot be kept");
  }
  values_[key] = value;
}

void MemoryUserDefaults::setFailing(bool failing) {
  const std::lock_guard lock(mutex_);
  failing_ = failing;
}

void MemoryUserDefaults::setUnreadable(bool unreadable) {
  const std::lock_guard lock(mutex_);
  unreadable_ = unreadable;
}

std::vector<std::string> MemoryUserDefaults::keys() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  for (const auto& [key, value] : values_) {
    names.push_back(key);
  }
  return names;
}

bool MemoryUserDefaults::holds(std::string_view text) const {
  const std::lock_guard lock(mutex_);
  const auto holdsText = [text](const StoredValue& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
      return std::to_string(*number).find(text) != std::string::npos;
    }
    const auto* bytes = std::get_if<Bytes>(&value);
    const std::string stored = bytes == nullptr ? std::get<std::string>(value) : toText(*bytes);
    return stored.find(text) != std::string::npos;
  };
  return std::any_of(values_.begin(), values_.end(),
                     [&](const auto& entry) { return holdsText(entry.second); });
}

}  // namespace orlix
