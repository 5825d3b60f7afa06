// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

namespace orlix::fuzz {

/// From now on every name is this machine's and every connection of this process leads to the given
/// port of it, whatever address it asks for: a redirect made up by the fuzzer reaches no other
/// machine. The sources define `connect` and `getaddrinfo` in the place of the C library's.
void leadEverywhereTo(std::uint16_t port);

}  // namespace orlix::fuzz
