#pragma once

#include <cstddef>
#include <string_view>

namespace orlix {

/// UTF-8 as RFC 3629 has it: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

/// The first `count` characters (code points) of a UTF-8 text. Throws std::out_of_range when there
/// are fewer.
std::string_view firstCharacters(std::string_view text, std::size_t count);

}  // namespace orlix
