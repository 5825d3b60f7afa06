#pragma once

#include "orlixkit/platform/Secret.h"
#include "orlixkit/records/JsonFields.h"

namespace orlix {

/// Writes request bodies as JSON (RFC 8259, UTF-8) in the form that the server has always been
/// sent: one member a line, two spaces of indentation a level, `"key" : value`, `/` escaped, and an
/// empty object as braces with an empty line between them.
class JsonText {
 public:
  /// Secret, because a CVV may be in it. Thread: any.
  /// Throws std::invalid_argument when a key or text is not valid UTF-8.
  static SecretBytes write(const JsonFields& fields);
};

}  // namespace orlix
