// SPDX-License-Identifier: Apache-2.0

// The brand's fonts: the operations of the facade that register and list them.

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"

namespace orlix {

namespace {

/// The fonts of the installed host by family. A shell that draws with them reads the same
/// resources.
struct RegisteredFonts {
  bool loaded = false;
  std::map<std::string, std::vector<std::string>> families;
};

RegisteredFonts& registered() { return Host::current().shared<RegisteredFonts>(); }

/// By the four bytes that every font file begins with (OpenType, ISO/IEC 14496-22).
bool isOpenType(const Bytes& file) {
  using namespace std::string_view_literals;
  constexpr std::array kTags{"OTTO"sv, "\0\1\0\0"sv, "true"sv, "ttcf"sv};
  const std::string head(file.begin(),
                         file.begin() + std::min<std::ptrdiff_t>(std::ssize(file), 4));
  return std::find(kTags.begin(), kTags.end(), head) != kTags.end();
}

}  // namespace

void OXOrlix::load() {
  if (std::exchange(registered().loaded, true)) {
    return;
  }
  loadFontWithName(OXUtil::regularFont());
  loadFontWithName(OXUtil::boldFont());
  loadFontWithName(OXUtil::lightFont());
}

void OXOrlix::loadFontWithName(const std::string& name) {
  const auto file = Host::current().ports().bundle->resource(name, "otf");
  if (!file) {
    return;
  }
  if (!isOpenType(*file)) {
    log("Failed to load font: The resource " + name + ".otf is no OpenType font.");
    return;
  }
  std::vector<std::string>& names = registered().families[name.substr(0, name.find('-'))];
  if (std::find(names.begin(), names.end(), name) == names.end()) {
    names.push_back(name);
  }
}

void OXOrlix::printFonts() {
  for (const auto& [family, names] : registered().families) {
    log(family);
    for (const std::string& name : names) {
      log("  " + name);
    }
  }
}

}  // namespace orlix
