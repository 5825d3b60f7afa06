#pragma once

#include <filesystem>
#include <string>

#include "orlixkit/platform/Device.h"

namespace orlix {

/// This machine, as the server hears of it. The vendor identifier is derived from the machine id
/// and the application's name, so that it outlives the state directory and tells two applications
/// of one machine apart without showing the machine id itself. Where there is no machine id, a
/// random one is kept in the state directory.
class PosixDevice : public Device {
 public:
  struct Sources {
    std::string applicationName;
    std::filesystem::path stateDirectory;
    std::filesystem::path machineIdFile = "/etc/machine-id";
  };
  /// Throws std::runtime_error when there is neither a machine id nor a way to keep one.
  explicit PosixDevice(const Sources& sources);

  std::string vendorIdentifier() const override { return vendorIdentifier_; }
  std::string systemVersion() const override { return systemVersion_; }
  std::string model() const override { return model_; }
  std::string bundleShortVersion() const override;

 private:
  std::string vendorIdentifier_;
  std::string systemVersion_;
  std::string model_;
};

}  // namespace orlix
