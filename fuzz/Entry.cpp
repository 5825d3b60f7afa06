// SPDX-License-Identifier: Apache-2.0

// What libFuzzer calls; compiled once for each target.

#include <cstddef>
#include <cstdint>

#include "fuzz/Target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orlix::fuzz::ORLIX_FUZZ_TARGET({data, size});
  return 0;
}
