// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Database.h"

#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

#include <fmt/format.h>
#include <sqlite3.h>

namespace orlix::sandbox {

namespace {

/// Made before SQLite makes it, which would let everybody read the tokens in it.
void makePrivateFile(const std::string& file) {
  const int descriptor = ::open(file.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  if (descriptor < 0) throw std::runtime_error(fmt::format("cannot open the database {}", file));
  ::close(descriptor);
}

Database::Value valueIn(sqlite3_stmt* statement, int column) {
  if (sqlite3_column_type(statement, column) == SQLITE_INTEGER) {
    return static_cast<std::int64_t>(sqlite3_column_int64(statement, column));
  }
  const auto* text = sqlite3_column_text(statement, column);
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
  return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text), size);
}

}  // namespace

void Database::Close::operator()(sqlite3* database) const { sqlite3_close(database); }

void Database::Close::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Database::Database(const std::string& file) {
  if (!file.empty()) makePrivateFile(file);
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(file.empty() ? ":memory:" : file.c_str(), &opened);
  database_.reset(opened);
  if (result != SQLITE_OK)
    throw std::runtime_error(fmt::format("cannot open the database {}", file));
  sqlite3_busy_timeout(opened, 2000);
  if (!file.empty()) {
    ask("PRAGMA journal_mode = WAL");
    ask("PRAGMA synchronous = NORMAL");  // Outlives a killed process, which is enough here.
  }
}

void Database::fail() const {
  throw std::runtime_error(fmt::format("database: {}", sqlite3_errmsg(database_.get())));
}

sqlite3_stmt* Database::prepared(const std::string& sql, std::initializer_list<Value> values) {
  auto& statement = statements_[sql];
  if (!statement) {
    sqlite3_stmt* made = nullptr;
    const int result = sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &made, nullptr);
    statement.reset(made);
    if (result != SQLITE_OK) fail();
  }
  sqlite3_reset(statement.get());
  sqlite3_clear_bindings(statement.get());
  int position = 0;
  for (const Value& value : values) {
    ++position;
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
      sqlite3_bind_int64(statement.get(), position, *number);
    } else {
      const std::string& text = std::get<std::string>(value);
      sqlite3_bind_text(statement.get(), position, text.data(), static_cast<int>(text.size()),
                        SQLITE_TRANSIENT);
    }
  }
  return statement.get();
}

void Database::run(const std::string& sql, std::initializer_list<Value> values) {
  ask(sql, values);
}

std::vector<Database::Row> Database::ask(const std::string& sql,
                                         std::initializer_list<Value> values) {
  sqlite3_stmt* statement = prepared(sql, values);
  std::vector<Row> rows;
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
    std::vector<Value> columns;
    const int count = sqlite3_column_count(statement);
    columns.reserve(static_cast<size_t>(count));
    for (int column = 0; column < count; ++column) {
      columns.push_back(valueIn(statement, column));
    }
    rows.emplace_back(std::move(columns));
  }
  if (result != SQLITE_DONE) fail();
  sqlite3_reset(statement);
  return rows;
}

Database::Transaction::Transaction(Database& database) : database_(database) {
  database_.run("BEGIN IMMEDIATE");
}

Database::Transaction::~Transaction() {
  if (open_) sqlite3_exec(database_.database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Database::Transaction::commit() {
  database_.run("COMMIT");
  open_ = false;
}

}  // namespace orlix::sandbox
