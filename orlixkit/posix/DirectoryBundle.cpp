// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/DirectoryBundle.h"

#include <fstream>
#include <iterator>

namespace orlix {

std::optional<Bytes> readFile(const std::filesystem::path& file) {
  std::error_code problem;
  if (!std::filesystem::is_regular_file(file, problem)) {
    return std::nullopt;
  }
  std::ifstream stream(file, std::ios::binary);
  Bytes contents{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream || stream.bad()) {
    return std::nullopt;
  }
  return contents;
}

std::optional<Bytes> DirectoryBundle::resource(const std::string& name,
                                               const std::string& type) const {
  const std::string file = type.empty() ? name : name + "." + type;
  if (file.find('/') != std::string::npos || file.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  return readFile(directory_ / file);
}

}  // namespace orlix
