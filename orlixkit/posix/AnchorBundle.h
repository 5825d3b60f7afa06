// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>

#include "orlixkit/ports/Bundle.h"

namespace orlix {

/// Serves one certificate file as the resource "certificateroot.cer": the trust anchor of a private
/// server. The file may be in DER or PEM form; the resource is always DER.
class AnchorBundle : public Bundle {
 public:
  /// Throws std::runtime_error when the file cannot be read or holds no certificate: a wrong anchor
  /// would otherwise appear only as a refused connection.
  explicit AnchorBundle(const std::filesystem::path& file);
  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override;

 private:
  Bytes certificate_;
};

}  // namespace orlix
