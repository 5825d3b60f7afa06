// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/JsonObject.h"

namespace orlix {

/// Entry point for decoding the server's JSON.
class KCVelloUtil {
 public:
  /// Limit, in bytes, of the memory for decoding an answer, besides the answer itself. An answer
  /// that needs more is refused, whatever its length: a body of 50 MB made of small values would
  /// take over 1 GB.
  static constexpr std::size_t kMemoryLimit = std::size_t{256} * 1024 * 1024;
  /// Limit, in bytes, of the records filled from one answer: list elements, texts and copied JSON
  /// values. Without it a list of empty objects would take two hundred times its own length.
  /// `AnswerReader` refuses an answer beyond it with the same NetworkException.
  static constexpr std::size_t kRecordLimit = std::size_t{64} * 1024 * 1024;
  /// Maximum nesting of objects and arrays.
  static constexpr std::size_t kDepthLimit = 64;

  /// Decodes the JSON object of an answer's body (RFC 8259, UTF-8). Thread: any. Throws
  /// NetworkException "Parse data", "Something went wrong with the data" for anything else: an
  /// empty body, another top-level value, trailing bytes, invalid UTF-8, nesting beyond the depth
  /// limit, more memory than the limit.
  static JsonObject getJson(ByteView data);
};

}  // namespace orlix
