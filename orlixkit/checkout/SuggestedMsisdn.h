// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace orlix {

/// Normalises a South African or international number to "+" and ASCII digits (E.164); an empty
/// text stays empty. Hosts store numbers in many forms: with the trunk zero, with "00", with both
/// country code and trunk zero.
std::string suggestedMsisdn(std::string_view number);

}  // namespace orlix
