// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orlix {

/// Digits of an international number without "+" (E.164), as sent to the server.
inline constexpr std::size_t kShortestMsisdn = 7;
inline constexpr std::size_t kLongestMsisdn = 15;

/// Converts a number as typed by a user to the international form: with the trunk zero, the code,
/// "+" or "00", and any characters between the digits. `countryCode` is prepended where the code is
/// missing. Empty for an empty number; the length is not checked.
std::string normalizedMsisdn(std::string_view countryCode, std::string_view number);

}  // namespace orlix
