// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>

#include <sqlite3.h>

namespace orlix::bench {

/// The store's blob in its own table, written durably and read back.
class BareStore {
 public:
  explicit BareStore(const std::string& file) {
    if (sqlite3_open(file.c_str(), &database_) != SQLITE_OK) {
      throw std::runtime_error("the bare store cannot open " + file);
    }
    run("PRAGMA journal_mode=WAL");
    run("PRAGMA synchronous=FULL");
    run("CREATE TABLE IF NOT EXISTS value(key TEXT PRIMARY KEY, value BLOB)");
    sqlite3_prepare_v2(database_, "INSERT OR REPLACE INTO value VALUES('k', ?)", -1, &write_,
                       nullptr);
    sqlite3_prepare_v2(database_, "SELECT value FROM value WHERE key='k'", -1, &read_, nullptr);
  }
  BareStore(const BareStore&) = delete;
  BareStore& operator=(const BareStore&) = delete;
  ~BareStore() {
    sqlite3_finalize(write_);
    sqlite3_finalize(read_);
    sqlite3_close(database_);
  }

  void write(const unsigned char* bytes, int size) {
    sqlite3_bind_blob(write_, 1, bytes, size, SQLITE_TRANSIENT);
    sqlite3_step(write_);
    sqlite3_reset(write_);
  }
  int read(unsigned char* bytes) {
    sqlite3_step(read_);
    const int size = sqlite3_column_bytes(read_, 0);
    const auto* stored = static_cast<const unsigned char*>(sqlite3_column_blob(read_, 0));
    std::copy(stored, stored + size, bytes);
    sqlite3_reset(read_);
    return size;
  }

 private:
  void run(const char* sql) { sqlite3_exec(database_, sql, nullptr, nullptr, nullptr); }

  sqlite3* database_ = nullptr;
  sqlite3_stmt* write_ = nullptr;
  sqlite3_stmt* read_ = nullptr;
};

}  // namespace orlix::bench
