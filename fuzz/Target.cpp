// SPDX-License-Identifier: Apache-2.0

#include "fuzz/Target.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>

namespace orlix::fuzz {

namespace {

constexpr std::array<Target, 13> kTargets{{
    {"records", records},
    {"store", store},
    {"pares", pares},
    {"amount", amount},
    {"numbers", numbers},
    {"hex", hex},
    {"script", script},
    {"transport", transport},
    {"list", list},
    {"certificate", certificate},
    {"separated", separated},
    {"dates", dates},
}};

}  // namespace

const Target* findTarget(std::string_view name) {
  const auto* const found = std::find_if(kTargets.begin(), kTargets.end(),
                                         [&](const Target& target) { return target.name == name; });
  return found != kTargets.end() ? found : nullptr;
}

void check(bool holds, std::string_view rule) {
  if (!holds) {
    std::cerr << "broken rule: " << rule << std::endl;
    std::abort();
  }
}

std::string_view takeLine(std::string_view& text) {
  const std::size_t length = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, length);
  text.remove_prefix(std::min(length + 1, text.size()));
  return line;
}

}  // namespace orlix::fuzz
