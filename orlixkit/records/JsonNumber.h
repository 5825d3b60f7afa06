#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace orlix {

/// The integer part of a JSON number, from its digits: exact, cut towards zero, to the range's end.
/// Takes a leading '+' and an empty text (0) as well.
std::int64_t integerPart(std::string_view number);

/// The integer part of a double, to the range's end.
std::int64_t integerPart(double number);

/// How a number with a fraction, an exponent or too many digits for 64 bits is kept: as the nearest
/// double of the same integer part, or as that integer where no such double is near. So neither
/// reading loses anything: 12.5 stays an amount, 9007199254740993.0 stays that identifier. Beyond
/// the range it is infinite, and zero has no sign.
std::variant<double, std::int64_t> keptNumber(std::string_view number);

}  // namespace orlix
