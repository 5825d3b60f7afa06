// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/records/Json.h"

namespace orlix {

/// A decoded value as JSON text, without white space. Numbers have the fewest digits that read back
/// as the same number and, within the usual range, no exponent (12.5, not 1.25E1), because such a
/// text may be shown to the user as an amount.
std::string jsonText(const JsonValue& value);

}  // namespace orlix
