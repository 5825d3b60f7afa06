#pragma once

#include <string>
#include <string_view>

namespace orlix {

/// The decimal digits of a text, each as 0 to 9; everything else is left out.
///
/// A decimal digit is whatever Unicode counts as one (category Nd), as on the phones that users
/// type on: full-width and Arabic-Indic digits come from ordinary keyboards. They are written down
/// as 0 to 9, which is all that a dialled number (E.164) knows. Leaving them out instead would turn
/// a number into another one, and send its owner the message.
std::string decimalDigitsOf(std::string_view text);

}  // namespace orlix
