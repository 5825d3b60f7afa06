#pragma once

#include <string_view>

namespace orlix {

/// Whether a web view may ask for this address, be it a page or something on it: encrypted ones
/// (https, wss), and plain ones (http, ws) of this very machine, where nobody listens in.
/// Everything else, local files above all, is refused. `address` is absolute.
bool isPageAddressAllowed(std::string_view address);

}  // namespace orlix
