// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace orlix {

/// The decimal digits of a text, each as 0 to 9; other characters are omitted.
///
/// A decimal digit is any character of Unicode category Nd: ordinary keyboards produce full-width
/// and Arabic-Indic digits. They are converted to 0 to 9, the only digits of a dialled number
/// (E.164). Omitting them would change the number, and the SMS would be sent to another phone.
std::string decimalDigitsOf(std::string_view text);

}  // namespace orlix
