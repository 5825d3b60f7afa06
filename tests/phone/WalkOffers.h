// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace orlix::test {

// How often an event is chosen, against the others that are possible.
constexpr double kUsual = 6;
constexpr double kNow = 1;
constexpr double kRare = 0.15;

inline bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace orlix::test
