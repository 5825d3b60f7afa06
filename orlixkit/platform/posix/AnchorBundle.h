#pragma once

#include <filesystem>

#include "orlixkit/platform/Bundle.h"

namespace orlix {

/// One certificate file in the place of the resource "certificateroot.cer": the anchor of a server
/// of one's own. The file may be in DER or PEM form; the resource is always DER.
class AnchorBundle : public Bundle {
 public:
  /// Throws std::runtime_error when the file cannot be read or holds no certificate: a wrong anchor
  /// would otherwise show only as a connection that is refused.
  explicit AnchorBundle(const std::filesystem::path& file);
  std::optional<Bytes> resource(const std::string& name, const std::string& type) const override;

 private:
  Bytes certificate_;
};

}  // namespace orlix
