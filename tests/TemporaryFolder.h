// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace orlix::test {

/// A folder that goes with this object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "orlix-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("cannot make the folder " + name);
    }
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  /// The bytes of every file in it, one behind the other.
  std::string everyByte() const {
    std::string all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path_)) {
      std::ifstream file(entry.path(), std::ios::binary);
      all.append(std::istreambuf_iterator<char>(file), {});
    }
    return all;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace orlix::test
