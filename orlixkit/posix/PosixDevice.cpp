// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixDevice.h"

#include <ctime>

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

std::chrono::seconds PosixDevice::utcOffset(CalendarTime at) const {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(
      std::chrono::time_point_cast<std::chrono::system_clock::duration>(at));
  std::tm local{};
  if (::localtime_r(&seconds, &local) == nullptr) {
    return std::chrono::seconds(0);
  }
  return std::chrono::seconds(local.tm_gmtoff);
}

}  // namespace orlix
