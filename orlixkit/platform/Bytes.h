#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orlix {

using Bytes = std::vector<std::uint8_t>;
/// Bytes owned by someone else; valid while the owner neither changes nor releases them.
using ByteView = std::span<const std::uint8_t>;

/// Something to run later, once.
using Task = std::function<void()>;

inline Bytes toBytes(std::string_view text) { return {text.begin(), text.end()}; }
inline std::string toText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace orlix
