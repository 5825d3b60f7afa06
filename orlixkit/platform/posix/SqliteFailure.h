#pragma once

#include <filesystem>
#include <string>

struct sqlite3;

namespace orlix {

/// Throws the StoreException for what has just failed on this connection: the file, SQLite's
/// reason, and what the operator can do. std::bad_alloc when it was memory that ran out.
/// `action` completes "cannot …".
[[noreturn]] void throwSqliteFailure(const char* action, const std::filesystem::path& file,
                                     sqlite3* database);
/// The same for a result code (SQLITE_…) and a cause of one's own.
[[noreturn]] void throwSqliteFailure(const char* action, const std::filesystem::path& file,
                                     int result, const std::string& cause);

}  // namespace orlix
