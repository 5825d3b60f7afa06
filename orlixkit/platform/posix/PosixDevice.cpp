#include "orlixkit/platform/posix/PosixDevice.h"

#include <sys/utsname.h>

namespace orlix {

PosixDevice::PosixDevice(const IdentifierSources& sources)
    : vendorIdentifier_(vendorIdentifierOf(sources)) {
  utsname names{};
  if (::uname(&names) == 0) {
    systemVersion_ = static_cast<const char*>(names.release);
    model_ = static_cast<const char*>(names.machine);
  }
}

std::string PosixDevice::bundleShortVersion() const { return ORLIX_VERSION; }

}  // namespace orlix
