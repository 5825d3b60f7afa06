#include "orlixkit/records/JsonObject.h"

#include <utility>

#include "orlixkit/records/JsonMemory.h"

namespace orlix {

JsonObject::JsonObject(std::unique_ptr<Memory> memory) : memory_(std::move(memory)) {}
JsonObject::JsonObject(JsonObject&&) noexcept = default;
JsonObject& JsonObject::operator=(JsonObject&&) noexcept = default;
JsonObject::~JsonObject() = default;

const JsonDictionary& JsonObject::dictionary() const { return memory_->root.get_object(); }

}  // namespace orlix
