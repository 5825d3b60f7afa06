// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/ports/Device.h"
#include "orlixkit/posix/VendorIdentifier.h"

namespace orlix {

/// Properties of this machine, and the identifier of this installation.
class PosixDevice : public Device {
 public:
  /// Throws StoreException as `vendorIdentifierOf` does.
  explicit PosixDevice(const IdentifierSources& sources);

  std::string vendorIdentifier() const override { return vendorIdentifier_; }
  std::string systemVersion() const override { return systemVersion_; }
  std::string model() const override { return model_; }
  std::chrono::seconds utcOffset(CalendarTime at) const override;

 private:
  std::string vendorIdentifier_;
  std::string systemVersion_;
  std::string model_;
};

}  // namespace orlix
