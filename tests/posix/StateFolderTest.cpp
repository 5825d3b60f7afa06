// What an installation keeps on the disk: who may touch it, and the identifier beside the store.

#include <fstream>
#include <latch>
#include <set>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "orlixkit/posix/DirectoryBundle.h"
#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/posix/StateFolder.h"
#include "orlixkit/posix/VendorIdentifier.h"
#include "tests/TemporaryFolder.h"

namespace orlix {

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr auto anyIdentifier =
    "[0-9A-F]{8}-[0-9A-F]{4}-[48][0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
const std::string machine = "0123456789abcdef0123456789abcdef";
// SHA-256 of "shop", a zero byte and the machine id above, cut and marked as a UUID of version 8.
const std::string derived = "19E820E8-66CD-8533-8DCF-1A4D8E9CC0D2";

class State : public testing::Test {
 protected:
  /// The reason why the ports refuse this folder; empty when they take it.
  static std::string refusalOf(const fs::path& folder) {
    try {
      PosixOptions options;
      options.applicationName = "shop";
      options.stateDirectory = folder;
      options.logTarget = LogTarget::stderrOnly;
      makePosixPorts(options).backgroundQueues->close();
    } catch (const StoreException& refused) {
      return refused.what();
    }
    return "";
  }
  std::string identify(const std::string& application = "shop") const {
    return vendorIdentifierOf({application, state, machineId});
  }
  void write(const fs::path& file, const std::string& text) const {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  void makeStore() const {
    EXPECT_EQ(refusalOf(state), "");
    fs::remove(identifier);
  }
  static unsigned modeOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0U;
  }

  test::TemporaryFolder folder;
  const fs::path state = folder.path() / "state";
  const fs::path identifier = state / kIdentifierFileName;
  const fs::path machineId = folder.path() / "machine-id";
};

TEST_F(State, OfWhichOthersCanChangeAnythingIsRefusedWithTheReason) {
  const auto mode = [](mode_t bits) {
    return [bits](const fs::path& path) { ::chmod(path.c_str(), bits); };
  };
  const auto link = [](const fs::path& path) {
    const fs::path moved = path.string() + ".moved";
    fs::rename(path, moved);
    fs::create_symlink(moved, path);
  };
  const auto replaceByFolder = [](const fs::path& path) {
    fs::remove_all(path);
    fs::create_directory(path);
  };
  struct Row {
    const char* name;
    std::function<void(const fs::path&)> spoil;
    std::string ofFolder, ofFile;
  };
  const Row rows[] = {
      {"read by others", mode(0755), "", ""},
      {"written by the group", mode(0720), "others (mode 0720)", "others (mode 0720)"},
      {"written by the world", mode(0702), "others (mode 0702)", "others (mode 0702)"},
      {"a symbolic link", link, "symbolic link", "symbolic link"},
      {"a folder", replaceByFolder, "", "is no regular file"},
  };
  for (const Row& row : rows) {
    const auto check = [&](const fs::path& spoiled, const std::string& reason) {
      SCOPED_TRACE(row.name + (" " + spoiled.string()));
      fs::remove_all(state);
      write(identifier, derived);
      std::ofstream(spoiled, std::ios::app).flush();
      row.spoil(spoiled);
      const std::string refusal = refusalOf(state);
      EXPECT_EQ(refusal.empty(), reason.empty()) << refusal;
      EXPECT_THAT(refusal,
                  AllOf(HasSubstr(reason.empty() ? "" : spoiled.string()), HasSubstr(reason)));
    };
    check(state, row.ofFolder);
    for (const char* file : {"defaults.db", "defaults.db-wal", "defaults.db-shm",
                             "defaults.db-journal", "vendor-identifier"}) {
      check(state / file, row.ofFile);
    }
    fs::remove_all(state.string() + ".moved");
  }
}

TEST_F(State, IsJudgedByItsOwnNameAndNotByTheFoldersAboveIt) {
  EXPECT_EQ(refusalOf(state), "");
  fs::create_symlink(state, folder.path() / "link");
  for (const char* name : {"link", "link/", "link/.", "link/./"}) {
    EXPECT_THAT(refusalOf(folder.path() / name), HasSubstr("symbolic link")) << name;
  }
  fs::create_directory_symlink(folder.path(), folder.path() / "above");
  ::chmod(folder.path().c_str(), 01777);
  EXPECT_EQ(refusalOf(folder.path() / "above" / "state"), "");
  EXPECT_EQ(refusalOf(folder.path() / "new" / "deeper" / "state" / ""), "");
  EXPECT_EQ(modeOf(folder.path() / "new" / "deeper" / "state"), 0700U);
  write(folder.path() / "file", "text");
  EXPECT_THAT(refusalOf(folder.path() / "file"), HasSubstr("is no folder"));
  EXPECT_THAT(refusalOf(folder.path() / "file" / "state"), HasSubstr("Not a directory"));
}

TEST_F(State, OfAnotherUserIsRefused) {
  if (::geteuid() != 0) {
    EXPECT_THAT(refusalOf("/usr"), HasSubstr("belongs to the user 0"));
    return;
  }
  constexpr uid_t other = 65534;
  for (const char* name : {"", "defaults.db", "vendor-identifier"}) {
    fs::remove_all(state);
    ASSERT_EQ(refusalOf(state), "");
    const fs::path spoiled = *name == '\0' ? state : state / name;
    ASSERT_EQ(::chown(spoiled.c_str(), other, other), 0);
    EXPECT_THAT(refusalOf(state),
                AllOf(HasSubstr(spoiled.string()), HasSubstr("belongs to the user 65534")));
  }
}

TEST_F(State, HasARandomIdentifierThatIsKept) {
  write(machineId, machine + "\n");
  std::set<std::string> seen;
  for (int installation = 0; installation < 3; ++installation) {
    fs::remove_all(state);
    const std::string first = identify();
    EXPECT_THAT(first, MatchesRegex(anyIdentifier));
    EXPECT_NE(first, derived);
    EXPECT_TRUE(seen.insert(first).second) << "machine and application are the same";
    EXPECT_EQ(identify("another name"), first);
    EXPECT_EQ(modeOf(identifier), 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(state), {}), 1) << "and nothing is left over";
  }
}

TEST_F(State, OfAnEarlierReleaseKeepsTheIdentifierDerivedThere) {
  makeStore();
  write(machineId, machine + "\n");
  EXPECT_EQ(identify(), derived);
  write(machineId, "f" + machine.substr(1) + "\n");
  EXPECT_EQ(identify("another name"), derived) << "from now on it is the one that is written down";
  EXPECT_EQ(modeOf(identifier), 0600U);
}

TEST_F(State, OfAnEarlierReleaseIsNotGivenAnotherIdentifierWhileTheMachinesIsMissing) {
  makeStore();
  for (const char* text : {"", "\n", "uninitialized\n"}) {
    write(machineId, text);
    EXPECT_THROW(identify(), StoreException) << text;
    EXPECT_FALSE(fs::exists(identifier));
  }
}

TEST_F(State, WithAnIdentifierThatIsNoneIsRefusedAndLeftAsItIs) {
  for (const std::string& text : {derived, derived + "\n", "19e820e8" + derived.substr(8)}) {
    write(identifier, text);
    EXPECT_EQ(identify(), text.substr(0, 36));
    EXPECT_EQ(modeOf(identifier), 0600U) << "also when it was copied here by someone careless";
  }
  for (const std::string& text :
       {std::string(), std::string("\n"), std::string("torn"), derived.substr(1), derived + "0",
        derived + "\n\n", derived + "\r\n", " " + derived.substr(1), "G" + derived.substr(1),
        derived.substr(0, 8) + "0" + derived.substr(9), std::string(36, '-'), std::string(36, '\0'),
        std::string(5000, 'A')}) {
    write(identifier, text);
    EXPECT_THAT(refusalOf(state),
                AllOf(HasSubstr(identifier.string()),
                      HasSubstr("does not hold a vendor identifier"), HasSubstr("Restore it")))
        << text;
    EXPECT_EQ(toText(readFile(identifier).value()), text);
    EXPECT_FALSE(fs::exists(state / kStoreFileName))
        << "a store would look like an earlier release's";
  }
}

TEST_F(State, ThatSeveralMakeAtOnceHasOneIdentifier) {
  for (int round = 0; round < 5; ++round) {
    fs::remove_all(state);
    std::latch together(6);
    std::vector<std::string> found(6);
    {
      std::vector<std::jthread> starters;
      for (std::string& one : found) {
        starters.emplace_back([&] {
          together.arrive_and_wait();
          one = identify();
        });
      }
    }
    EXPECT_THAT(found, testing::Each(found.front()));
    EXPECT_NE(found.front(), "");
  }
}

}  // namespace

}  // namespace orlix
