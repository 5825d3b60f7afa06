// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace orlix {

/// "+" and the digits of a South African or international number (E.164), those of any script
/// written as 0 to 9; an empty text stays empty. What a host knows of its user's number has come
/// through many hands: with the trunk zero, with "00", with both code and trunk zero.
std::string suggestedMsisdn(std::string_view number);

}  // namespace orlix
