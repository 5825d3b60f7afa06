#pragma once

#include <string>
#include <vector>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// Reads an XML property list (version 1.0, UTF-8) whose root is an array of strings, and no other:
/// declaration, document type and comments are skipped, the five predefined entities are resolved.
/// Throws std::invalid_argument with what was expected when the bytes are anything else; nothing is
/// ever read half.
std::vector<std::string> readStringArray(ByteView propertyList);

}  // namespace orlix
