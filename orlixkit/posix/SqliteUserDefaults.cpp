// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/SqliteUserDefaults.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "orlixkit/posix/SqliteFailure.h"
#include "orlixkit/posix/StateFolder.h"

namespace orlix {

namespace {

constexpr std::chrono::milliseconds kBusyTimeout{5000};

/// Resets a prepared statement for its next use when the scope is left.
struct ResetOnExit {
  sqlite3_stmt* statement;
  ~ResetOnExit() {
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
  }
};

/// The text in the row's first column.
std::string textIn(sqlite3_stmt* row) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, 0));
  return text == nullptr
             ? std::string()
             : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(row, 0)));
}

/// The value in the row's first column; absent when its type is one that no setter stores.
std::optional<StoredValue> valueIn(sqlite3_stmt* row) {
  switch (sqlite3_column_type(row, 0)) {
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(row, 0));
      return Bytes(bytes, bytes + sqlite3_column_bytes(row, 0));
    }
    case SQLITE_TEXT:
      return textIn(row);
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(row, 0)};
    default:
      return std::nullopt;
  }
}

/// Binds a value to the second parameter; it must stay valid until the statement has run.
struct BindValue {
  sqlite3_stmt* statement;

  int operator()(const Bytes& value) const {
    // An empty value may have a null address, and a null blob would be stored as NULL.
    return value.empty()
               ? sqlite3_bind_zeroblob(statement, 2, 0)
               : sqlite3_bind_blob64(statement, 2, value.data(), value.size(), SQLITE_STATIC);
  }
  int operator()(const std::string& value) const {
    return sqlite3_bind_text64(statement, 2, value.data(), value.size(), SQLITE_STATIC,
                               SQLITE_UTF8);
  }
  int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, 2, value); }
};

}  // namespace

void SqliteUserDefaults::CloseDatabase::operator()(sqlite3* database) const {
  sqlite3_close(database);
}

void SqliteUserDefaults::Finalize::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

SqliteUserDefaults::SqliteUserDefaults(const std::filesystem::path& file) : file_(file) {
  createFile();
  open();
  useWriteAheadLog();
  // FULL: a commit returns only when it is on the disk.
  execute("PRAGMA synchronous=FULL");
  // A column without a type keeps each value's own type.
  execute(
      "CREATE TABLE IF NOT EXISTS defaults (key TEXT PRIMARY KEY NOT NULL, value NOT NULL) "
      "WITHOUT ROWID");
  checkPages();
  select_ = prepare("SELECT value FROM defaults WHERE key = ?1");
  upsert_ = prepare(
      "INSERT INTO defaults (key, value) VALUES (?1, ?2) "
      "ON CONFLICT (key) DO UPDATE SET value = excluded.value");
  // From here on `untilUnlocked` waits instead, without this object's lock.
  sqlite3_busy_timeout(database_.get(), 0);
}

SqliteUserDefaults::~SqliteUserDefaults() = default;

void SqliteUserDefaults::createFile() const {
  requirePrivateFolder(file_.parent_path());
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    existsAndIsPrivate(file_.string() + ending);
  }
  if (existsAndIsPrivate(file_)) {
    // Also restrict a file that was copied here with wider permissions.
    ::chmod(file_.c_str(), S_IRUSR | S_IWUSR);
    return;
  }
  // Create the file private: SQLite would make it readable for everyone. Open it here only when it
  // is new, since closing any descriptor of a file drops the locks that another connection of this
  // process holds on it.
  const int made = ::open(file_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (made >= 0) {
    ::close(made);
  } else if (errno != EEXIST) {
    throwSqliteFailure("make", file_, errno == ENOSPC ? SQLITE_FULL : SQLITE_CANTOPEN,
                       std::strerror(errno));
  }
}

void SqliteUserDefaults::open() {
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(file_.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(opened);
  if (result != SQLITE_OK) {
    fail("open");
  }
  // SQLite silently opens a file that it may not write as read-only: detect it now, not during a
  // payment.
  if (sqlite3_db_readonly(database_.get(), nullptr) != 0) {
    throwSqliteFailure("write", file_, SQLITE_READONLY, sqlite3_errstr(SQLITE_READONLY));
  }
  sqlite3_busy_timeout(database_.get(), static_cast<int>(kBusyTimeout.count()));
}

void SqliteUserDefaults::useWriteAheadLog() {
  const Statement statement = prepare("PRAGMA journal_mode=WAL");
  // The busy time-out does not cover this switch: it fails at once while another process makes it
  // on a new file.
  untilUnlocked("open", [&] {
    const ResetOnExit reset{statement.get()};
    const int result = sqlite3_step(statement.get());
    if (result == SQLITE_ROW && textIn(statement.get()) != "wal") {
      throw StoreException(fmt::format(
          "user defaults: {} is on a file system without shared memory, which the write-ahead log "
          "needs. Choose a state folder on a local file system.",
          file_.string()));
    }
    return result;
  });
}

/// Detects a damaged page when the application starts, not in the middle of a payment.
void SqliteUserDefaults::checkPages() const {
  const Statement statement = prepare("PRAGMA quick_check(1)");
  if (sqlite3_step(statement.get()) != SQLITE_ROW) {
    fail("read");
  }
  const std::string finding = textIn(statement.get());
  if (finding != "ok") {
    throwSqliteFailure("read", file_, SQLITE_CORRUPT, finding);
  }
}

SqliteUserDefaults::Statement SqliteUserDefaults::prepare(const char* sql) const {
  sqlite3_stmt* made = nullptr;
  if (sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr) !=
      SQLITE_OK) {
    fail("open");
  }
  return Statement(made);
}

void SqliteUserDefaults::execute(const char* sql) const {
  if (sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    fail("open");
  }
}

void SqliteUserDefaults::fail(const char* action) const {
  throwSqliteFailure(action, file_, database_.get());
}

void SqliteUserDefaults::untilUnlocked(const char* action,
                                       const std::function<int()>& attempt) const {
  const auto deadline = std::chrono::steady_clock::now() + kBusyTimeout;
  while (true) {
    {
      const std::lock_guard lock(lock_);
      const int result = attempt();
      if (result == SQLITE_ROW || result == SQLITE_DONE) {
        return;
      }
      if ((result & 0xFF) != SQLITE_BUSY || std::chrono::steady_clock::now() > deadline) {
        fail(action);
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

void SqliteUserDefaults::bindKey(sqlite3_stmt* statement, const std::string& key) const {
  if (sqlite3_bind_text64(statement, 1, key.data(), key.size(), SQLITE_STATIC, SQLITE_UTF8) !=
      SQLITE_OK) {
    fail("use a key in");
  }
}

std::optional<StoredValue> SqliteUserDefaults::value(const std::string& key) const {
  std::optional<StoredValue> found;
  untilUnlocked("read", [&] {
    const ResetOnExit reset{select_.get()};
    bindKey(select_.get(), key);
    const int result = sqlite3_step(select_.get());
    if (result == SQLITE_ROW) {
      found = valueIn(select_.get());
    }
    return result;
  });
  return found;
}

void SqliteUserDefaults::setValue(const std::string& key, const StoredValue& value) {
  untilUnlocked("write", [&] {
    const ResetOnExit reset{upsert_.get()};
    bindKey(upsert_.get(), key);
    const int bound = std::visit(BindValue{upsert_.get()}, value);
    return bound == SQLITE_OK ? sqlite3_step(upsert_.get()) : bound;
  });
}

}  // namespace orlix
