// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>

struct sqlite3;

namespace orlix {

/// Throws StoreException for the last failure on this connection, with the file, SQLite's reason
/// and the remedy; std::bad_alloc when memory ran out.
/// `action` completes "cannot …".
[[noreturn]] void throwSqliteFailure(const char* action, const std::filesystem::path& file,
                                     sqlite3* database);
/// Overload for a result code (SQLITE_…) and a given cause.
[[noreturn]] void throwSqliteFailure(const char* action, const std::filesystem::path& file,
                                     int result, const std::string& cause);

}  // namespace orlix
