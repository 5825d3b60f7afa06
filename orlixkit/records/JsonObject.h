#pragma once

#include <memory>

#include "orlixkit/records/Json.h"

namespace orlix {

/// A decoded answer with the memory that it lies in, which is wiped on release: answers carry keys
/// and tokens. Movable; references into it live as long as the object last moved to.
class JsonObject {
 public:
  JsonObject(JsonObject&&) noexcept;
  JsonObject& operator=(JsonObject&&) noexcept;
  ~JsonObject();

  const JsonDictionary& dictionary() const;

 private:
  friend class KCVelloUtil;
  struct Memory;
  explicit JsonObject(std::unique_ptr<Memory> memory);
  std::unique_ptr<Memory> memory_;
};

}  // namespace orlix
