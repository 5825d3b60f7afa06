#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <latch>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "orlixkit/platform/posix/DirectoryBundle.h"
#include "orlixkit/platform/posix/SqliteUserDefaults.h"
#include "tests/platform/PosixPlatform.h"
#include "tests/platform/UserDefaultsContract.h"

namespace orlix {

namespace {

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
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "no failure";
  }

  TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "state" / "defaults.db";
};

/// Writes 1, 2, 3... and reports each number once its setter has returned. Never comes back.
[[noreturn]] void writeUntilKilled(const std::filesystem::path& file, int reports) {
  SqliteUserDefaults store(file);
  for (std::int64_t i = 1;; ++i) {
    store.setInteger("count", i);
    store.setData("blob", Bytes(5000, static_cast<std::uint8_t>(i)));
    if (::write(reports, &i, sizeof i) != sizeof i) {
      ::_exit(1);
    }
  }
}

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Sqlite, UserDefaultsContract, SqlitePlatform);

TEST_F(SqliteUserDefaultsTest, WhatWasReportedWrittenSurvivesASuddenDeath) {
  std::int64_t last = 0;  // over all rounds: each writer starts from 1 again
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
    while (reported<killAfter&& ::read(reports[0], &reported, sizeof reported)> 0) {
    }
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    while (::read(reports[0], &reported, sizeof reported) > 0) {
    }
    ::close(reports[0]);

    const SqliteUserDefaults store(file);
    const std::int64_t found = store.integerForKey("count");
    if (reported == 0) {
      EXPECT_TRUE(found == last || found == 1) << found;
    } else {
      EXPECT_TRUE(found == reported || found == reported + 1) << found << " of " << reported;
      const std::optional<Bytes> blob = store.dataForKey("blob");
      ASSERT_TRUE(blob.has_value());
      EXPECT_EQ(*blob, Bytes(5000, blob->at(0))) << "whole, if not the latest";
      EXPECT_GE(blob->at(0), static_cast<std::uint8_t>(reported));
    }
    last = found;
  }
}

TEST_F(SqliteUserDefaultsTest, SeveralMayOpenTheSameNewFileAtOnceAndSeeEachOthersValues) {
  constexpr int openers = 6;
  std::latch together(openers);
  std::vector<std::string> failures(openers);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < openers; ++i) {
    threads.emplace_back([&, i] {
      together.arrive_and_wait();
      failures[i] = failureOf([&] {
        SqliteUserDefaults store(file);
        for (int round = 0; round < 5; ++round) {
          store.setInteger("of " + std::to_string(i), round);
          store.setString("shared", "by " + std::to_string(i));
        }
      });
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const SqliteUserDefaults store(file);
  for (std::size_t i = 0; i < openers; ++i) {
    EXPECT_EQ(failures[i], "no failure");
    EXPECT_EQ(store.integerForKey("of " + std::to_string(i)), 4);
  }
  SqliteUserDefaults other(file);
  other.setString("shared", "last");
  EXPECT_EQ(store.stringForKey("shared"), "last");
}

TEST_F(SqliteUserDefaultsTest, OnlyTheOwnerReadsItsFiles) {
  {
    SqliteUserDefaults store(file);
    store.setInteger("key", 1);
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
  store.setString("key", "former");
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other,
                         "CREATE TRIGGER full BEFORE UPDATE ON defaults "
                         "BEGIN SELECT RAISE(ABORT, 'disk is full'); END",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  const std::string failure = failureOf([&store] { store.setString("key", "new"); });
  EXPECT_NE(failure.find("disk is full"), std::string::npos) << failure;
  EXPECT_EQ(store.stringForKey("key"), "former");
  ASSERT_EQ(sqlite3_exec(other, "DROP TRIGGER full", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(other);
  store.setString("key", "new");
  EXPECT_EQ(store.stringForKey("key"), "new");
}

}  // namespace orlix
