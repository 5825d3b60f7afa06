// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/SqliteFailure.h"

#include <cstring>
#include <new>

#include <fmt/format.h>
#include <sqlite3.h>

#include "orlixkit/ports/UserDefaults.h"

namespace orlix {

namespace {

const char* remedyFor(int result) {
  switch (result & 0xFF) {
    case SQLITE_FULL:
      return "Make room on its file system.";
    case SQLITE_BUSY:
      return "Another process keeps it locked: end that process.";
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:
      return "Give this user the right to write the file and its folder, on a file system that is "
             "not mounted read-only.";
    case SQLITE_IOERR:
      return "Check the disk, and whether a quota is used up.";
    default:
      return "Restore the file from a backup, or move it away together with its -wal and -shm "
             "files; the device then has to be activated again.";
  }
}

/// SQLite's message, with the system's error where there is one.
std::string causeOf(sqlite3* database, int result) {
  const int reason = sqlite3_system_errno(database);
  const int primary = result & 0xFF;
  const bool isOfSystem = primary == SQLITE_CANTOPEN || primary == SQLITE_IOERR;
  return isOfSystem && reason != 0
             ? fmt::format("{} ({})", sqlite3_errmsg(database), std::strerror(reason))
             : sqlite3_errmsg(database);
}

}  // namespace

void throwSqliteFailure(const char* action, const std::filesystem::path& file, sqlite3* database) {
  const int result = sqlite3_errcode(database);
  if ((result & 0xFF) == SQLITE_NOMEM) {
    throw std::bad_alloc();
  }
  throwSqliteFailure(action, file, result, causeOf(database, result));
}

void throwSqliteFailure(const char* action, const std::filesystem::path& file, int result,
                        const std::string& cause) {
  throw StoreException(fmt::format("user defaults: cannot {} {}: {}. {}", action, file.string(),
                                   cause, remedyFor(result)));
}

}  // namespace orlix
