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
  /// Names the application. Earlier releases made the vendor identifier of it: keep the name.
  std::string applicationName{};
  /// Where the key/value store ("defaults.db") and the vendor identifier are kept; made when it
  /// does not exist. It has to be this user's, not writable by others, and no symbolic link. Back
  /// up the whole folder or nothing of it: the stored record is read by this identifier only.
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
/// Throws std::runtime_error when the anchor file cannot be used, and StoreException, which is one,
/// when the state directory cannot: it is not private, the store is damaged, locked for more than
/// five seconds or read-only, the disk is full. Its text names the file and says what to do.
Ports makePosixPorts(const PosixOptions& options);

}  // namespace orlix
