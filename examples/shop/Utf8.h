#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orlix::shop {

/// True for well-formed UTF-8 (RFC 3629): no overlong form, no surrogate, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

/// The code points of a well-formed text, each in its UTF-8 form: the keys that type it.
std::vector<std::string> characters(std::string_view text);

}  // namespace orlix::shop
