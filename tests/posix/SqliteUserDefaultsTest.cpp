#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <latch>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "orlixkit/posix/DirectoryBundle.h"
#include "orlixkit/posix/SqliteUserDefaults.h"
#include "tests/ports/UserDefaultsContract.h"
#include "tests/posix/FaultyDisk.h"
#include "tests/posix/PosixPlatform.h"

namespace orlix {

namespace {

using testing::AllOf;
using testing::HasSubstr;

class SqlitePlatform {
 public:
  UserDefaults& userDefaults() { return store_; }

 private:
  TemporaryFolder folder_;
  SqliteUserDefaults store_{folder_.path() / "state" / "defaults.db"};
};

class SqliteUserDefaultsTest : public testing::Test {
 protected:
  unsigned modeOf(const std::filesystem::path& path) const {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777u : 0u;
  }
  std::string failureOf(const Task& task) const {
    try {
      task();
    } catch (const StoreException& error) {
      return error.what();
    }
    return "no failure";
  }

  using Database = std::shared_ptr<sqlite3>;
  Database openedElsewhere() const {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &opened), SQLITE_OK);
    return {opened, sqlite3_close};
  }
  static void execute(const Database& database, const char* sql) {
    EXPECT_EQ(sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  }

  TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "state" / "defaults.db";
};

INSTANTIATE_TYPED_TEST_SUITE_P(Sqlite, UserDefaultsContract, SqlitePlatform);

/// Writes 1, 2, 3... and reports each number once its setters have returned. Never comes back.
[[noreturn]] void writeUntilKilled(const std::filesystem::path& file, int reports) {
  SqliteUserDefaults store(file);
  for (std::int64_t i = 1;; ++i) {
    store.setValue("count", i);
    store.setValue("blob", Bytes(5000, static_cast<std::uint8_t>(i)));
    if (::write(reports, &i, sizeof i) != sizeof i) {
      ::_exit(1);
    }
  }
}

TEST_F(SqliteUserDefaultsTest, WhatWasReportedWrittenSurvivesASuddenDeath) {
  for (const int killAfter : {0, 1, 2, 5, 9, 14}) {
    int reports[2];
    ASSERT_EQ(::pipe2(reports, O_CLOEXEC), 0);
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      writeUntilKilled(file, reports[1]);
    }
    ::close(reports[1]);
    std::int64_t reported = 0;
    do {
      if (reported >= killAfter) {
        ::kill(writer, SIGKILL);
      }
    } while (::read(reports[0], &reported, sizeof reported) > 0);
    ::waitpid(writer, nullptr, 0);
    ::close(reports[0]);

    const SqliteUserDefaults store(file);  // also when not a single write was reported
    if (reported > 0) {
      const std::int64_t found = store.integerForKey("count");
      EXPECT_TRUE(found == reported || found == reported + 1) << found << " of " << reported;
      const Bytes blob = store.dataForKey("blob").value();
      EXPECT_EQ(blob, Bytes(5000, blob.at(0))) << "whole, if not the latest";
      EXPECT_GE(blob.at(0), static_cast<std::uint8_t>(reported));
    }
  }
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

TEST_F(SqliteUserDefaultsTest, WhatIsNoStoreIsNamedAndLeftAsItIs) {
  std::filesystem::create_directories(file.parent_path());
  const std::string text = "Dear diary, this is not a database, and it is long enough to be one.\n";
  std::ofstream(file) << text;
  const std::string failure = failureOf([this] { SqliteUserDefaults store(file); });
  EXPECT_NE(failure.find(file.string()), std::string::npos) << failure;
  EXPECT_NE(failure.find("not a database"), std::string::npos) << failure;
  EXPECT_EQ(toText(readFile(file).value()), text);

  EXPECT_NE(failureOf([this] { SqliteUserDefaults store(folder.path()); }), "no failure");
  EXPECT_NE(failureOf([this] { SqliteUserDefaults store(file / "below" / "a.db"); }), "no failure");
}

TEST_F(SqliteUserDefaultsTest, ASetterThatFailsKeepsTheFormerValueAndTheStoreGoesOn) {
  SqliteUserDefaults store(file);
  store.setValue("key", "former");
  const Database other = openedElsewhere();
  execute(other,
          "CREATE TRIGGER full BEFORE UPDATE ON defaults "
          "BEGIN SELECT RAISE(ABORT, 'disk is full'); END");
  const std::string failure = failureOf([&store] { store.setValue("key", "new"); });
  EXPECT_NE(failure.find("disk is full"), std::string::npos) << failure;
  EXPECT_EQ(store.stringForKey("key"), "former");
  execute(other, "DROP TRIGGER full");
  store.setValue("key", "new");
  EXPECT_EQ(store.stringForKey("key"), "new");
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
  }
  disk.fault = Fault::readOnly;
  EXPECT_THAT(failureOf(reopen), AllOf(HasSubstr(file.string()), HasSubstr("readonly"),
                                       HasSubstr("the right to write")))
      << "at the start, although nothing would have to be written";
}

TEST_F(SqliteUserDefaultsTest, ADamagedPageIsFoundAtTheStartAndLeftAsItIs) {
  {
    SqliteUserDefaults store(file);
    store.setValue("key", Bytes(20'000, 'x'));
  }
  std::string bytes = toText(readFile(file).value());
  bytes.replace(4096, 100, std::string(100, '\x5A'));  // the table's first page
  std::ofstream(file, std::ios::binary) << bytes;
  EXPECT_THAT(failureOf([&] { SqliteUserDefaults store(file); }),
              AllOf(HasSubstr(file.string()), HasSubstr("from a backup")));
  EXPECT_EQ(toText(readFile(file).value()), bytes);
}

TEST_F(SqliteUserDefaultsTest, AWriteThatWaitsForAnotherProcessDoesNotHoldUpReads) {
  static std::latch* writing;
  std::latch begun(1);
  writing = &begun;
  const auto watch = [](sqlite3* opened, char**, const sqlite3_api_routines*) {
    const auto onStatement = [](unsigned, void*, void* statement, void*) {
      const std::string sql = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
      if (sql.starts_with("INSERT") && !writing->try_wait()) {
        writing->count_down();
      }
      return 0;
    };
    return sqlite3_trace_v2(opened, SQLITE_TRACE_STMT, onStatement, nullptr);
  };
  const auto hook = reinterpret_cast<void (*)()>(+watch);
  ASSERT_EQ(sqlite3_auto_extension(hook), SQLITE_OK);
  SqliteUserDefaults store(file);
  const Database other = openedElsewhere();
  sqlite3_cancel_auto_extension(hook);
  execute(other, "BEGIN IMMEDIATE");
  std::jthread writer(
      [&] { EXPECT_EQ(failureOf([&] { store.setValue("key", 1); }), "no failure"); });
  begun.wait();
  EXPECT_EQ(store.integerForKey("other key"), 0);
  execute(other, "COMMIT");
  writer.join();
  EXPECT_EQ(store.integerForKey("key"), 1);
}

TEST_F(SqliteUserDefaultsTest, TheSwitchToTheWriteAheadLogIsTriedAgainWhileAnotherHoldsTheFile) {
  std::filesystem::create_directories(file.parent_path());
  static Database holder;
  static int attempts;
  holder = openedElsewhere();
  attempts = 0;
  // As another process does in the middle of the switch: SQLite refuses at once, with no time-out.
  execute(holder, "BEGIN IMMEDIATE");
  const auto watch = [](sqlite3* opened, char**, const sqlite3_api_routines*) {
    const auto onStatement = [](unsigned, void*, void* statement, void*) {
      const std::string sql = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
      if (sql.find("journal_mode") != std::string::npos && ++attempts == 3) {
        execute(holder, "COMMIT");
      }
      return 0;
    };
    return sqlite3_trace_v2(opened, SQLITE_TRACE_STMT, onStatement, nullptr);
  };
  const auto hook = reinterpret_cast<void (*)()>(+watch);
  ASSERT_EQ(sqlite3_auto_extension(hook), SQLITE_OK);
  EXPECT_EQ(failureOf([this] { SqliteUserDefaults(file).setValue("key", 1); }), "no failure");
  sqlite3_cancel_auto_extension(hook);
  holder.reset();
  EXPECT_EQ(attempts, 3);
  EXPECT_EQ(SqliteUserDefaults(file).integerForKey("key"), 1);
}

TEST_F(SqliteUserDefaultsTest, SeveralOpenersOfANewFileAtOnceAllGetTheSameStore) {
  for (int round = 0; round < 5; ++round) {
    const std::filesystem::path fresh = folder.path() / std::to_string(round) / "defaults.db";
    std::latch together(6);
    std::vector<std::jthread> openers;
    for (int opener = 0; opener < 6; ++opener) {
      openers.emplace_back([&, opener] {
        together.arrive_and_wait();
        EXPECT_EQ(failureOf([&] {
                    SqliteUserDefaults(fresh).setValue(std::to_string(opener), opener + 1);
                  }),
                  "no failure");
      });
    }
    openers.clear();
    for (int opener = 0; opener < 6; ++opener) {
      EXPECT_EQ(SqliteUserDefaults(fresh).integerForKey(std::to_string(opener)), opener + 1);
    }
  }
}

}  // namespace

}  // namespace orlix
