#pragma once

#include <string_view>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

inline ByteView view(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// A record that is filled from a whole answer, or from its decoded object.
template <class Record>
Record parsed(std::string_view text) {
  Record record;
  if constexpr (requires { record.parseFromData(view(text)); }) {
    record.parseFromData(view(text));
  } else {
    const JsonObject answer = KCVelloUtil::getJson(view(text));
    record.parseFromData(answer.dictionary());
  }
  return record;
}

}  // namespace orlix
