// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// The store cannot be read or written. `what` is for the operator: it names the file or key, the
/// cause and, where there is one, the remedy.
class StoreException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A stored value keeps its type.
using StoredValue = std::variant<Bytes, std::string, std::int64_t>;

/// The application's key/value store.
///
/// Thread: every operation may be called from any thread.
/// A value is durable when its setter returns. A setter that cannot keep the value throws
/// StoreException and leaves the former one in place; a getter throws it when the stored value
/// cannot be read. On the main thread it ends the flow with error 2.
/// A value read as another type than it was stored with counts as absent.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  virtual std::optional<StoredValue> value(const std::string& key) const = 0;
  virtual void setValue(const std::string& key, const StoredValue& value) = 0;

  std::optional<Bytes> dataForKey(const std::string& key) const { return valueOf<Bytes>(key); }
  std::optional<std::string> stringForKey(const std::string& key) const {
    return valueOf<std::string>(key);
  }
  /// 0 when there is none.
  std::int64_t integerForKey(const std::string& key) const {
    return valueOf<std::int64_t>(key).value_or(0);
  }

 private:
  template <class T>
  std::optional<T> valueOf(const std::string& key) const {
    std::optional<StoredValue> stored = value(key);
    T* const found = stored ? std::get_if<T>(&*stored) : nullptr;
    return found == nullptr ? std::nullopt : std::optional<T>(std::move(*found));
  }
};

}  // namespace orlix
