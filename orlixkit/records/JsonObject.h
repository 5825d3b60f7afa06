// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/Json.h"

namespace orlix {

/// A decoded answer and the memory that holds it, wiped on release since answers carry keys and
/// tokens. Movable; references into it stay valid until the object last moved to is released.
class JsonObject {
 public:
  JsonObject(JsonObject&&) noexcept;
  JsonObject& operator=(JsonObject&&) noexcept;
  ~JsonObject();

  const JsonDictionary& dictionary() const;

 private:
  friend class KCVelloUtil;
  struct Decoded;
  /// Throws as `KCVelloUtil::getJson`, and std::bad_alloc or std::length_error beyond the limit.
  explicit JsonObject(ByteView text);
  std::unique_ptr<Decoded> decoded_;
};

}  // namespace orlix
