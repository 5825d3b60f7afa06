// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace orlix::sandbox {

/// The sandbox's tables: in memory, or in one SQLite file.
///
/// Thread: the caller locks. Errors: std::runtime_error with SQLite's own words.
class Database {
 public:
  using Value = std::variant<std::int64_t, std::string>;

  class Row {
   public:
    explicit Row(std::vector<Value> values) : values_(std::move(values)) {}
    std::string text(size_t column) const { return std::get<std::string>(values_.at(column)); }
    std::int64_t number(size_t column) const { return std::get<std::int64_t>(values_.at(column)); }

   private:
    std::vector<Value> values_;
  };

  /// An empty `file` keeps everything in memory. A new file is readable by its owner only.
  explicit Database(const std::string& file);

  void run(const std::string& sql, std::initializer_list<Value> values = {});
  std::vector<Row> ask(const std::string& sql, std::initializer_list<Value> values = {});

  /// What is run between making one and `commit` happens whole or not at all.
  class Transaction {
   public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

   private:
    Database& database_;
    bool open_ = true;
  };

 private:
  struct Close {
    void operator()(sqlite3* database) const;
    void operator()(sqlite3_stmt* statement) const;
  };

  sqlite3_stmt* prepared(const std::string& sql, std::initializer_list<Value> values);
  [[noreturn]] void fail() const;

  std::unique_ptr<sqlite3, Close> database_;
  std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Close>> statements_;
};

}  // namespace orlix::sandbox
