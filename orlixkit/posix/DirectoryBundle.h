// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>

#include "orlixkit/ports/Bundle.h"

namespace orlix {

/// Resources that are files of one directory: `name.type`, or `name` when the type is empty.
class DirectoryBundle : public Bundle {
 public:
  explicit DirectoryBundle(std::filesystem::path directory) : directory_(std::move(directory)) {}
  /// Names that lead out of the directory are not found.
  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override;

 private:
  std::filesystem::path directory_;
};

/// Contents of a regular file; absent when it cannot be read.
std::optional<Bytes> readFile(const std::filesystem::path& file);

}  // namespace orlix
