#include "orlixkit/platform/memory/MemoryUserDefaults.h"

#include <algorithm>

namespace orlix {

template <class T>
std::optional<T> MemoryUserDefaults::read(const std::string& key) const {
  const std::lock_guard lock(mutex_);
  if (unreadable_) {
    throw StoreException("MemoryUserDefaults: the value of " + key + " cannot be read");
  }
  const auto found = values_.find(key);
  const T* value = found == values_.end() ? nullptr : std::get_if<T>(&found->second);
  return value == nullptr ? std::nullopt : std::optional<T>(*value);
}

void MemoryUserDefaults::write(const std::string& key, Value value) {
  const std::lock_guard lock(mutex_);
  if (failing_) {
    throw StoreException("MemoryUserDefaults: the value of " + key + " cannot be kept");
  }
  values_[key] = std::move(value);
}

std::optional<Bytes> MemoryUserDefaults::dataForKey(const std::string& key) const {
  return read<Bytes>(key);
}

std::optional<std::string> MemoryUserDefaults::stringForKey(const std::string& key) const {
  return read<std::string>(key);
}

std::int64_t MemoryUserDefaults::integerForKey(const std::string& key) const {
  return read<std::int64_t>(key).value_or(0);
}

void MemoryUserDefaults::setData(const std::string& key, const Bytes& value) { write(key, value); }

void MemoryUserDefaults::setString(const std::string& key, const std::string& value) {
  write(key, value);
}

void MemoryUserDefaults::setInteger(const std::string& key, std::int64_t value) {
  write(key, value);
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
  const auto holdsText = [text](const Value& value) {
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
