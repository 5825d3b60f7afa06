#pragma once

#include <string>

#include "orlixkit/records/Json.h"

namespace orlix {

/// A decoded value as JSON text, without white space. Numbers are written with the fewest digits
/// that read back as the same number and without an exponent where that is customary: 12.5, not
/// 1.25E1, because such a text is shown to the user as an amount.
std::string jsonText(const JsonValue& value);

}  // namespace orlix
