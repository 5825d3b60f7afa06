#pragma once

#include <filesystem>
#include <string>

namespace orlix {

/// Where the identifier of an installation comes from.
struct IdentifierSources {
  std::string applicationName;
  std::filesystem::path stateDirectory;
  std::filesystem::path machineIdFile = "/etc/machine-id";
};

/// The installation's identifier: a random UUID, kept in the state folder, where only this user can
/// read it, for the key of the stored record is made from it. Made on the first call: of several
/// processes that make it at once, all get the same.
///
/// Earlier releases derived it from the machine id and the application's name and kept none. Where
/// there is a store but no identifier, that one is written down, so that the record stays readable.
///
/// Throws StoreException when the folder or the file is not private (see `requirePrivateFolder`),
/// when the file cannot be read or does not hold an identifier (it is never replaced), when it
/// cannot be written, and when there is a store but neither an identifier nor a machine id.
std::string vendorIdentifierOf(const IdentifierSources& sources);

}  // namespace orlix
