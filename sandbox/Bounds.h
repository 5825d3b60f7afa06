// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>

namespace orlix::sandbox {

/// What the server remembers is bounded, whatever clients send and for however long it runs: the
/// lists in rows, the texts in them in bytes. The oldest are dropped.
constexpr std::size_t kMostKept = 10'000;

/// Of a path, a serial, a reason.
constexpr std::size_t kLongestKeptText = 1'000;

/// Of a body.
constexpr std::size_t kLongestKeptBody = std::size_t{64} * 1024;

inline std::string clipped(std::string text) {
  if (text.size() > kLongestKeptText) text.resize(kLongestKeptText);
  return text;
}

}  // namespace orlix::sandbox
