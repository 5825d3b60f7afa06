// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>
#include <vector>

namespace orlix::sandbox {

/// A file of the page, compiled into the program.
struct ConsoleFile {
  std::string_view name;
  std::string_view contentType;
  std::string_view bytes;
};

const std::vector<ConsoleFile>& consoleFiles();

}  // namespace orlix::sandbox
