// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace orlix {

/// The integer part of a JSON number, computed from its digits: exact, truncated towards zero,
/// clamped to the range. Also accepts a leading '+' and an empty text (0).
std::int64_t integerPart(std::string_view number);

/// The integer part of a double, clamped to the range.
std::int64_t integerPart(double number);

/// Represents a number with a fraction, an exponent or too many digits for 64 bits: as the nearest
/// double if that has the same integer part, otherwise as that integer. So neither reading loses
/// precision: 12.5 remains an amount, 9007199254740993.0 that identifier. Beyond the range of
/// doubles it is infinite, and zero has no sign.
std::variant<double, std::int64_t> keptNumber(std::string_view number);

}  // namespace orlix
