#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// The application's key/value store.
///
/// Thread: every operation may be called from any thread.
/// A value is durable when its setter returns. A setter that cannot keep the value throws
/// std::runtime_error and leaves the former one in place.
/// A value read under another type than it was stored with counts as absent.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  virtual std::optional<Bytes> dataForKey(const std::string& key) const = 0;
  virtual std::optional<std::string> stringForKey(const std::string& key) const = 0;
  /// 0 when there is none.
  virtual std::int64_t integerForKey(const std::string& key) const = 0;

  virtual void setData(const std::string& key, const Bytes& value) = 0;
  virtual void setString(const std::string& key, const std::string& value) = 0;
  virtual void setInteger(const std::string& key, std::int64_t value) = 0;
};

}  // namespace orlix
