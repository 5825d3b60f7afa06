// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orlix {

using Bytes = std::vector<std::uint8_t>;
/// Non-owning view of bytes; valid while the owner neither changes nor releases them.
using ByteView = std::span<const std::uint8_t>;

/// A function to run once, later.
using Task = std::function<void()>;

inline Bytes toBytes(std::string_view text) { return {text.begin(), text.end()}; }
inline std::string toText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace orlix
