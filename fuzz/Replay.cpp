// SPDX-License-Identifier: Apache-2.0

// Runs kept inputs through a target, each once.

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz/Target.h"

namespace {

namespace fs = std::filesystem;

/// The files named, and those in the folders named; a folder that is not there holds none.
std::vector<fs::path> filesOf(const std::vector<fs::path>& places) {
  std::vector<fs::path> files;
  for (const fs::path& place : places) {
    if (fs::is_regular_file(place)) {
      files.push_back(place);
    } else if (fs::is_directory(place)) {
      for (const auto& entry : fs::directory_iterator(place)) {
        files.push_back(entry.path());
      }
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

orlix::Bytes contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int count, char** words) {
  const std::vector<std::string> arguments(words + 1, words + count);
  const orlix::fuzz::Target* const target =
      arguments.size() > 1 ? orlix::fuzz::findTarget(arguments[0]) : nullptr;
  if (target == nullptr) {
    std::cerr << "usage: orlix-fuzz-replay TARGET FILE-OR-FOLDER...\n";
    return 2;
  }
  const std::vector<fs::path> files = filesOf({arguments.begin() + 1, arguments.end()});
  for (const fs::path& file : files) {
    std::cout << file.string() << std::endl;  // before it runs: it may be the last line
    target->run(contentOf(file));
  }
  std::cout << files.size() << " inputs replayed\n";
  return files.empty() ? 1 : 0;
}
