// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>

#include "orlixkit/ports/UserDefaults.h"

struct sqlite3;
struct sqlite3_stmt;

namespace orlix {

/// The key/value store in one SQLite file, readable by its owner only. A value survives a crash of
/// the process or the machine once its setter has returned. Several processes may use the file at
/// once; one waits for another up to five seconds. A waiting write does not block the reads of
/// other threads.
///
/// Every operation throws StoreException with the file's name, SQLite's reason and the remedy when
/// the file cannot be read or written; its contents are then unchanged.
class SqliteUserDefaults : public UserDefaults {
 public:
  /// Creates the file and its folders when they do not exist. Throws StoreException also when the
  /// store is damaged or read-only, and when its folder or one of its files is not private (see
  /// `requirePrivateFolder`).
  explicit SqliteUserDefaults(const std::filesystem::path& file);
  ~SqliteUserDefaults() override;

  std::optional<StoredValue> value(const std::string& key) const override;
  void setValue(const std::string& key, const StoredValue& value) override;

 private:
  struct CloseDatabase {
    void operator()(sqlite3* database) const;
  };
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

  void createFile() const;
  void open();
  void useWriteAheadLog();
  void checkPages() const;
  Statement prepare(const char* sql) const;
  void execute(const char* sql) const;
  /// Runs `attempt`, which returns SQLite's result of a step, with the lock held; while another
  /// process has locked the file, releases the lock, pauses and retries.
  void untilUnlocked(const char* action, const std::function<int()>& attempt) const;
  void bindKey(sqlite3_stmt* statement, const std::string& key) const;
  [[noreturn]] void fail(const char* action) const;

  const std::filesystem::path file_;
  mutable std::mutex lock_;  // guards the database and both statements
  std::unique_ptr<sqlite3, CloseDatabase> database_;
  Statement select_;
  Statement upsert_;
};

}  // namespace orlix
