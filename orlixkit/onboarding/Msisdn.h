#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orlix {

/// Digits of an international number without "+" (E.164), as the server takes them.
inline constexpr std::size_t kShortestMsisdn = 7;
inline constexpr std::size_t kLongestMsisdn = 15;

/// The international form of a number as a user types it: with the trunk zero, with the code, with
/// "+" or "00", with whatever stands between the digits. `countryCode` is the code to put in front
/// where it is missing. Empty for an empty number; of any length otherwise.
std::string normalizedMsisdn(std::string_view countryCode, std::string_view number);

}  // namespace orlix
