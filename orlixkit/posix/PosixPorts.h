// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/host/Host.h"
#include "orlixkit/posix/PosixSystemLog.h"

namespace orlix {

/// The resources compiled into the library: list of countries, fonts, images.
std::vector<std::shared_ptr<const Bundle>> compiledInResources();

struct PosixOptions {
  /// Name of the application. Earlier releases derived the vendor identifier from it: keep the
  /// name.
  std::string applicationName{};
  /// Folder of the key/value store ("defaults.db") and the vendor identifier; created when it does
  /// not exist. It must belong to this user, not be writable by others and not be a symbolic link.
  /// Back up the folder as a whole: the stored record can be read only with this identifier.
  std::filesystem::path stateDirectory{};
  /// A certificate in DER or PEM form, served as the resource "certificateroot.cer".
  std::optional<std::filesystem::path> anchorFile{};
  /// Searched in this order, after the anchor file.
  std::vector<std::filesystem::path> resourceDirectories{};
  /// Searched last.
  std::vector<std::shared_ptr<const Bundle>> bundles = compiledInResources();
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
