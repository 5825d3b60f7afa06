#pragma once

#include <filesystem>
#include <string_view>

namespace orlix {

/// Names of the files in an application's state folder.
inline constexpr std::string_view storeFileName = "defaults.db";
inline constexpr std::string_view identifierFileName = "vendor-identifier";

/// Makes sure that the folder is there, and private: a new one, and the folders above it, are made,
/// readable by this user only. Throws StoreException when it cannot be made, belongs to another
/// user, can be written by group or others, is a symbolic link, or is no folder: whoever else can
/// write there could put another store or identifier in place. The folders above are not judged.
void requirePrivateFolder(const std::filesystem::path& folder);

/// Whether the file is there. Then it is private: throws StoreException when it is not a regular
/// file, belongs to another user, can be written by group or others, or is a symbolic link.
bool existsAndIsPrivate(const std::filesystem::path& file);

/// Puts on the disk what was made or renamed in the folder, where its file system can do so.
void syncFolder(const std::filesystem::path& folder);

}  // namespace orlix
