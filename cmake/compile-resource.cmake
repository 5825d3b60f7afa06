# SPDX-License-Identifier: Apache-2.0

# Writes the bytes of INPUT as the C++ array kResource<NUMBER> to OUTPUT. NUMBER may be any text that a
# name may hold, so that two libraries of one program do not clash.
file(READ ${INPUT} bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE ${OUTPUT} "// Made from ${INPUT}.
#include <cstddef>
#include <cstdint>

namespace orlix {

extern const std::uint8_t kResource${NUMBER}[];
extern const std::size_t kResource${NUMBER}Size;
// An array is never empty: one byte more, which does not count.
const std::uint8_t kResource${NUMBER}[] = {${bytes}0};
const std::size_t kResource${NUMBER}Size = ${size};

}  // namespace orlix
")
