// SPDX-License-Identifier: Apache-2.0

#include <atomic>
#include <csignal>
#include <latch>
#include <thread>
#include <unistd.h>

#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include "tests/posix/FaultyDisk.h"
#include "tests/posix/StateFixture.h"

namespace orlix {

namespace {

/// Hears each statement of the stores that are opened while it lives. One at a time.
class StatementListener {
 public:
  using Heard = std::function<void(const std::string& sql)>;
  explicit StatementListener(Heard heard) {
    heard_ = std::move(heard);
    sqlite3_auto_extension(extension());
  }
  ~StatementListener() { sqlite3_cancel_auto_extension(extension()); }
  StatementListener(const StatementListener&) = delete;
  StatementListener& operator=(const StatementListener&) = delete;

 private:
  static void (*extension())() {
    const auto onOpen = [](sqlite3* opened, char**, const sqlite3_api_routines*) {
      const auto onStatement = [](unsigned, void*, void* statement, void*) {
        heard_(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
        return 0;
      };
      return sqlite3_trace_v2(opened, SQLITE_TRACE_STMT, onStatement, nullptr);
    };
    return reinterpret_cast<void (*)()>(+onOpen);
  }
  static inline Heard heard_;
};

class SqliteUserDefaultsTest : public StateFixture {
 protected:
  using Database = std::shared_ptr<sqlite3>;
  Database openedElsewhere() const {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &opened), SQLITE_OK);
    return {opened, sqlite3_close};
  }
  static void execute(const Database& database, const char* sql) {
    EXPECT_EQ(sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  }

  const fs::path file = state / "defaults.db";
};

TEST_F(SqliteUserDefaultsTest, WhatWasReportedWrittenSurvivesASuddenDeath) {
  void* const shared = ::mmap(nullptr, sizeof(std::atomic<std::int64_t>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  auto& reported = *new (shared) std::atomic<std::int64_t>(0);
  for (const int killAfter : {0, 1, 2, 5, 9, 14}) {
    reported = 0;
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      SqliteUserDefaults store(file);
      for (std::int64_t i = 1;; ++i) {
        store.setValue("count", i);
        store.setValue("blob", Bytes(5000, static_cast<std::uint8_t>(i)));
        reported = i;
      }
    }
    while (reported < killAfter) {
      std::this_thread::yield();
    }
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);

    const SqliteUserDefaults store(file);  // also when not a single write was reported
    if (reported > 0) {
      const std::int64_t found = store.integerForKey("count");
      EXPECT_TRUE(found == reported || found == reported + 1) << found << " of " << reported;
      const Bytes blob = store.dataForKey("blob").value();
      EXPECT_EQ(blob, Bytes(5000, blob.at(0))) << "whole, if not the latest";
      EXPECT_LE(static_cast<std::uint8_t>(blob.at(0) - reported), 1);
    }
  }
  ::munmap(shared, sizeof reported);
}

TEST_F(SqliteUserDefaultsTest, OnlyTheOwnerReadsItsFiles) {
  {
    SqliteUserDefaults store(file);
    store.setValue("key", 1);
    EXPECT_EQ(modeOf(file.parent_path()), 0700u);
    for (const char* ending : {"", "-wal", "-shm"}) {
      EXPECT_EQ(modeOf(file.string() + ending), 0600u) << ending;
    }
  }
  ::chmod(file.c_str(), 0644);
  const SqliteUserDefaults again(file);
  EXPECT_EQ(modeOf(file), 0600u) << "also when it was made by someone careless";
  EXPECT_EQ(again.integerForKey("key"), 1);
}

TEST_F(SqliteUserDefaultsTest, WhatIsNoStoreOrADamagedOneIsNamedAndLeftAsItIs) {
  SqliteUserDefaults(file).setValue("key", Bytes(20'000, 'x'));
  std::string damaged = textOf(file);
  damaged.replace(4096, 100, std::string(100, '\x5A'));  // the table's first page
  const std::string diary = "Dear diary, this is no database, and it is long enough to be one.\n";
  for (const auto& [bytes, reason] :
       {std::pair(damaged, "from a backup"), {diary, "not a database"}}) {
    write(file, bytes);
    EXPECT_THAT(failureOf([this] { SqliteUserDefaults store(file); }),
                AllOf(HasSubstr(file.string()), HasSubstr(reason)));
    EXPECT_EQ(textOf(file), bytes);
  }
  EXPECT_NE(failureOf([this] { SqliteUserDefaults store(folder.path()); }), "");
  EXPECT_NE(failureOf([this] { SqliteUserDefaults store(file / "below" / "a.db"); }), "");
}

TEST_F(SqliteUserDefaultsTest, AValueIsForcedOntoTheDiskBeforeItsSetterReturns) {
  FaultyDisk disk;
  SqliteUserDefaults store(file);
  const std::vector<Task> setters{[&] { store.setValue("key", 1); },
                                  [&] { store.setValue("key", "text"); },
                                  [&] { store.setValue("key", Bytes{1}); }};
  for (const Task& set : setters) {
    const int before = disk.syncs;
    set();
    EXPECT_GT(disk.syncs, before);
  }
}

TEST_F(SqliteUserDefaultsTest, AFailureNamesTheFileTheCauseAndTheRemedy) {
  using Fault = FaultyDisk::Fault;
  FaultyDisk disk;
  const auto reopen = [&] { SqliteUserDefaults again(file); };
  {
    SqliteUserDefaults store(file);
    store.setValue("key", "former");
    const Task write = [&] { store.setValue("key", "new"); };
    const Task readFromDisk = [&] {
      execute(openedElsewhere(), "INSERT INTO defaults VALUES ('other', 1)");  // the cache is old
      disk.fault = Fault::unreadable;
      store.stringForKey("key");
    };
    const Task writeToDisk = [&] {
      disk.fault = Fault::full;
      write();
    };
    for (const auto& [action, cause, remedy] :
         {std::tuple(writeToDisk, "disk is full", "Make room"),
          std::tuple(readFromDisk, "disk I/O error", "Check the disk")}) {
      const std::string failure = failureOf(action);
      disk.fault = Fault::none;
      EXPECT_THAT(failure, AllOf(HasSubstr(file.string()), HasSubstr(cause), HasSubstr(remedy)));
      EXPECT_EQ(store.stringForKey("key"), "former");
    }
    EXPECT_EQ(failureOf(write), "") << "the store goes on";
    EXPECT_EQ(store.stringForKey("key"), "new");
  }
  disk.fault = Fault::readOnly;
  EXPECT_THAT(failureOf(reopen), AllOf(HasSubstr(file.string()), HasSubstr("readonly"),
                                       HasSubstr("the right to write")))
      << "at the start, although nothing would have to be written";
}

TEST_F(SqliteUserDefaultsTest, AWriteThatWaitsForAnotherProcessDoesNotHoldUpReads) {
  std::latch writing(1);
  const StatementListener listener([&writing](const std::string& sql) {
    if (sql.starts_with("INSERT") && !writing.try_wait()) {
      writing.count_down();
    }
  });
  SqliteUserDefaults store(file);
  const Database other = openedElsewhere();
  execute(other, "BEGIN IMMEDIATE");
  std::jthread writer([&] { EXPECT_EQ(failureOf([&] { store.setValue("key", 1); }), ""); });
  writing.wait();
  EXPECT_EQ(store.integerForKey("other key"), 0);
  execute(other, "COMMIT");
  writer.join();
  EXPECT_EQ(store.integerForKey("key"), 1);
}

TEST_F(SqliteUserDefaultsTest, TheSwitchToTheWriteAheadLogIsTriedAgainWhileAnotherHoldsTheFile) {
  fs::create_directories(state);
  const Database holder = openedElsewhere();
  // As another process does in the middle of the switch: SQLite refuses at once, with no time-out.
  execute(holder, "BEGIN IMMEDIATE");
  int attempts = 0;
  const StatementListener listener([&](const std::string& sql) {
    if (sql.find("journal_mode") != std::string::npos && ++attempts == 3) {
      execute(holder, "COMMIT");
    }
  });
  EXPECT_EQ(failureOf([this] { SqliteUserDefaults(file).setValue("key", 1); }), "");
  EXPECT_EQ(attempts, 3);
  EXPECT_EQ(SqliteUserDefaults(file).integerForKey("key"), 1);
}

TEST_F(SqliteUserDefaultsTest, SeveralOpenersOfANewFileAtOnceAllGetTheSameStore) {
  for (int round = 0; round < 5; ++round) {
    const fs::path fresh = folder.path() / std::to_string(round) / "defaults.db";
    atOnce([&](int opener) {
      EXPECT_EQ(failureOf([&] {
                  SqliteUserDefaults(fresh).setValue(std::to_string(opener), opener + 1);
                }),
                "");
    });
    for (int opener = 0; opener < 6; ++opener) {
      EXPECT_EQ(SqliteUserDefaults(fresh).integerForKey(std::to_string(opener)), opener + 1);
    }
  }
}

}  // namespace

}  // namespace orlix
