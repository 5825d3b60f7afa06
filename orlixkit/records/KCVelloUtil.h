#pragma once

#include <cstddef>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/records/JsonObject.h"

namespace orlix {

/// The one entry for JSON from the server.
class KCVelloUtil {
 public:
  /// Memory that decoding an answer may take besides the answer itself. An answer that needs more
  /// is refused, whatever its length: a body of 50 MB made of small values would take over 1 GB.
  static constexpr std::size_t memoryLimit = std::size_t{256} * 1024 * 1024;
  /// Memory of the records that are filled from one answer: each element of a list, each text, each
  /// value that is kept as it stands. A list of empty objects would take two hundred times its own
  /// length otherwise. `AnswerReader` refuses what goes beyond, in the same way as a body.
  static constexpr std::size_t recordLimit = std::size_t{64} * 1024 * 1024;
  /// Objects and arrays within each other.
  static constexpr std::size_t depthLimit = 64;

  /// The object that an answer's body holds (RFC 8259, UTF-8). Thread: any.
  /// Throws NetworkException "Parse data", "Something went wrong with the data" for everything
  /// else: an empty body, another top-level value, bytes after it, invalid UTF-8, nesting beyond
  /// the depth limit, more memory than the limit.
  static JsonObject getJson(ByteView data);
};

}  // namespace orlix
