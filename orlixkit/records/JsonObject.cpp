// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/JsonObject.h"

#include <boost/json/value.hpp>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/JsonDecoder.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/security/AnswerMemory.h"

namespace orlix {

/// Release the value before the memory that holds it.
struct JsonObject::Decoded {
  explicit Decoded(ByteView text) : value(decodeJson(text, KCVelloUtil::kDepthLimit, memory)) {}

  AnswerMemory memory{KCVelloUtil::kMemoryLimit, KCVelloUtil::kRecordLimit};
  JsonValue value;
};

JsonObject::JsonObject(ByteView text) : decoded_(std::make_unique<Decoded>(text)) {
  if (!decoded_->value.is_object()) {
    throw unreadableAnswer();
  }
}

JsonObject::JsonObject(JsonObject&&) noexcept = default;
JsonObject& JsonObject::operator=(JsonObject&&) noexcept = default;
JsonObject::~JsonObject() = default;

const JsonDictionary& JsonObject::dictionary() const { return decoded_->value.get_object(); }

}  // namespace orlix
