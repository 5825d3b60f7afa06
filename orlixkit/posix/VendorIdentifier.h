// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>

namespace orlix {

/// Files that the identifier of an installation is read or derived from.
struct IdentifierSources {
  std::string applicationName;
  std::filesystem::path stateDirectory;
  std::filesystem::path machineIdFile = "/etc/machine-id";
};

/// The installation's identifier: a random UUID, kept in the state folder, readable by this user
/// only because the key of the stored record is derived from it. Created on the first call;
/// processes that call at the same time get the same identifier.
///
/// Earlier releases derived it from the machine id and the application's name and stored none.
/// Where there is a store but no identifier, the derived one is stored, so that the record stays
/// readable.
///
/// Throws StoreException when the folder or the file is not private (see `requirePrivateFolder`),
/// when the file cannot be read or does not hold an identifier (it is never replaced), when it
/// cannot be written, and when there is a store but neither an identifier nor a machine id.
std::string vendorIdentifierOf(const IdentifierSources& sources);

}  // namespace orlix
