// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orlix::sandbox {

/// True when `block` (16 upper-case hexadecimal digits) holds `pin` under `key`.
///
/// ISO 9564 format 0 with the account field of the reference 0 (all zeros), enciphered by two-key
/// triple DES (K1 K2 K1, ECB). Every malformed block counts as a wrong PIN: a real server reveals
/// no more. The deciphered block is wiped.
bool holdsPin(std::string_view block, const std::vector<unsigned char>& key, std::string_view pin);

/// True for exactly 16 upper-case hexadecimal digits.
bool looksLikePinBlock(std::string_view block);

}  // namespace orlix::sandbox
