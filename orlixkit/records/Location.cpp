// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/Location.h"

#include <fmt/format.h>

namespace orlix {

namespace {

/// The text that the server expects for an absent value.
constexpr const char* kAbsent = "(null)";

std::string textOf(const std::optional<double>& number) {
  return number ? fmt::format("{}", *number) : kAbsent;
}

}  // namespace

std::string Location::buildLocation() const {
  std::string text;
  if (gpsLatitude) {
    text += fmt::format("[G:{},{}],", textOf(gpsLatitude), textOf(gpsLongditude));
  }
  if (networkCellId) {
    text += fmt::format("[N:{},{},{},{}],", networkMCC.value_or(kAbsent),
                        networkMNC.value_or(kAbsent), *networkCellId, networkLac.value_or(kAbsent));
  }
  if (!text.empty()) {
    text.pop_back();
  }
  return text;
}

}  // namespace orlix
