// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string_view>

namespace orlix {

/// Names of the files in an application's state folder.
inline constexpr std::string_view kStoreFileName = "defaults.db";
inline constexpr std::string_view kIdentifierFileName = "vendor-identifier";

/// Ensures that the folder exists and is private: creates it, and missing parents, readable by this
/// user only. Throws StoreException when it cannot be created, belongs to another user, is writable
/// by group or others, or is a symbolic link or not a folder: another user who can write there
/// could replace the store or the identifier. Existing parents are not checked.
void requirePrivateFolder(const std::filesystem::path& folder);

/// Whether the file exists. Throws StoreException when it exists and is not private: not a regular
/// file, owned by another user, writable by group or others, or a symbolic link.
bool existsAndIsPrivate(const std::filesystem::path& file);

/// Flushes the folder's entries to the disk, where the file system supports it.
void syncFolder(const std::filesystem::path& folder);

}  // namespace orlix
