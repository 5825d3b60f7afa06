#pragma once

#include <string>

namespace orlix {

/// What the device says of itself. Every text is stable while the process runs.
class Device {
 public:
  virtual ~Device() = default;
  /// A UUID text (RFC 4122, 36 characters), stable per installation of the application.
  virtual std::string vendorIdentifier() const = 0;
  virtual std::string systemVersion() const = 0;
  /// The machine field of uname.
  virtual std::string model() const = 0;
  /// Short version of the library's bundle, such as 2.1.0.
  virtual std::string bundleShortVersion() const = 0;
};

}  // namespace orlix
