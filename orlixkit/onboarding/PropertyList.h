// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Reads an XML property list (version 1.0, UTF-8) whose root is an array of strings: skips
/// declaration, document type and comments, and resolves the five predefined entities. Throws
/// std::invalid_argument naming what was expected for anything else; never returns a partial list.
std::vector<std::string> readStringArray(ByteView propertyList);

}  // namespace orlix
