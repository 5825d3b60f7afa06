#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/posix/PosixSystemLog.h"

namespace orlix {

struct PosixOptions {
  /// Names the application: its vendor identifier is its own.
  std::string applicationName{};
  /// Where the key/value store is kept ("defaults.db"); made when it does not exist.
  std::filesystem::path stateDirectory{};
  /// A certificate in DER or PEM form that stands in for the resource "certificateroot.cer".
  std::optional<std::filesystem::path> anchorFile{};
  /// Looked through in this order, after the anchor file.
  std::vector<std::filesystem::path> resourceDirectories{};
  /// Looked through last: the resources compiled into the library.
  std::vector<std::shared_ptr<const Bundle>> bundles{};
  LogTarget logTarget = LogTarget::syslogAndStderr;
  /// Latitude and longitude in degrees; without them there is no position source.
  std::optional<std::pair<double, double>> location{};
};

/// The ports on Linux, for a host without a display toolkit: the main queue is a run loop on the
/// calling thread, and there are no web views.
/// Throws std::runtime_error when the state directory or the anchor file cannot be used.
Ports makePosixPorts(const PosixOptions& options);

}  // namespace orlix
