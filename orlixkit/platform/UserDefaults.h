#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// The store cannot be read or written. `what` is for the operator: it names the file or key, the
/// cause and, where there is one, the remedy.
class StoreException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The application's key/value store.
///
/// Thread: every operation may be called from any thread.
/// A value is durable when its setter returns. A setter that cannot keep the value throws
/// StoreException and leaves the former one in place; a getter throws it when it cannot tell what
/// is stored. On the main thread it ends the flow with error 2 (see `runLogged`).
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
