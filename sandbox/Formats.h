// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

namespace orlix::sandbox {

// The forms that texts of the protocol must have.

bool isDigits(std::string_view text);

/// Digits, and perhaps a point and more digits.
bool isDecimalNumber(std::string_view text);

/// A mobile number in international form: 7 to 15 digits, no sign.
bool isMobileNumber(std::string_view text);

/// "+02:00"
bool isTimeZone(std::string_view text);

/// One or more of "[i:…]", "[s:…]" and "[p:…]", joined by commas.
bool isDeviceSerial(std::string_view text);

/// Nothing, "[G:latitude,longitude]", "[N:mcc,mnc,cell,lac]", or both in this order, joined by a
/// comma.
bool isLocation(std::string_view text);

/// The wallet's termination page, by whatever loopback name and port the client knows it.
bool isTerminationAddress(std::string_view text);

}  // namespace orlix::sandbox
