// SPDX-License-Identifier: Apache-2.0

// What an installation keeps on the disk: who may touch it, and the identifier beside the store.

#include <set>
#include <unistd.h>

#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/posix/StateFolder.h"
#include "orlixkit/posix/VendorIdentifier.h"
#include "tests/posix/StateFixture.h"

namespace orlix {

namespace {

constexpr auto kAnyIdentifier =
    "[0-9A-F]{8}-[0-9A-F]{4}-[48][0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
const std::string kMachine = "0123456789abcdef0123456789abcdef";
// SHA-256 of "shop", a zero byte and the machine id above, cut and marked as a UUID of version 8.
const std::string kDerived = "19E820E8-66CD-8533-8DCF-1A4D8E9CC0D2";

class State : public StateFixture {
 protected:
  /// The reason why the ports refuse this folder; empty when they take it.
  static std::string refusalOf(const fs::path& folder) {
    return failureOf([&folder] {
      PosixOptions options;
      options.applicationName = "shop";
      options.stateDirectory = folder;
      options.logTarget = LogTarget::stderrOnly;
      makePosixPorts(options).backgroundQueues->close();
    });
  }
  std::string identify(const std::string& application = "shop") const {
    return vendorIdentifierOf({application, state, machineId});
  }
  void makeStore() const {
    EXPECT_EQ(refusalOf(state), "");
    fs::remove(identifier);
  }

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
  std::vector<Row> rows{
      {"read by others", mode(0755), "", ""},
      {"written by the group", mode(0720), "others (mode 0720)", "others (mode 0720)"},
      {"written by the world", mode(0702), "others (mode 0702)", "others (mode 0702)"},
      {"a symbolic link", link, "symbolic link", "symbolic link"},
      {"a folder", replaceByFolder, "", "is no regular file"},
  };
  if (::geteuid() == 0) {
    const auto giveAway = [](const fs::path& path) {
      EXPECT_EQ(::chown(path.c_str(), 65534, 65534), 0);
    };
    rows.push_back({"of another user", giveAway, "the user 65534", "the user 65534"});
  } else {
    EXPECT_THAT(refusalOf("/usr"), HasSubstr("belongs to the user 0"));
  }
  for (const Row& row : rows) {
    const auto check = [&](const fs::path& spoiled, const std::string& reason) {
      SCOPED_TRACE(row.name + (" " + spoiled.string()));
      fs::remove_all(state);
      write(identifier, kDerived);
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

TEST_F(State, HasARandomIdentifierThatIsKept) {
  write(machineId, kMachine + "\n");
  std::set<std::string> seen;
  for (int installation = 0; installation < 3; ++installation) {
    fs::remove_all(state);
    const std::string first = identify();
    EXPECT_THAT(first, testing::MatchesRegex(kAnyIdentifier));
    EXPECT_NE(first, kDerived);
    EXPECT_TRUE(seen.insert(first).second) << "machine and application are the same";
    EXPECT_EQ(identify("another name"), first);
    EXPECT_EQ(modeOf(identifier), 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(state), {}), 1) << "and nothing is left over";
  }
}

TEST_F(State, OfAnEarlierReleaseKeepsTheIdentifierDerivedThereAndGetsNoOtherInItsPlace) {
  makeStore();
  for (const char* nothing : {"", "\n", "uninitialized\n"}) {
    write(machineId, nothing);
    EXPECT_THROW(identify(), StoreException) << nothing;
    EXPECT_FALSE(fs::exists(identifier));
  }
  write(machineId, kMachine + "\n");
  EXPECT_EQ(identify(), kDerived);
  write(machineId, "f" + kMachine.substr(1) + "\n");
  EXPECT_EQ(identify("another name"), kDerived) << "from now on it is the one that is written down";
  EXPECT_EQ(modeOf(identifier), 0600U);
}

TEST_F(State, WithAnIdentifierThatIsNoneIsRefusedAndLeftAsItIs) {
  for (const std::string& text : {kDerived, kDerived + "\n", "19e820e8" + kDerived.substr(8)}) {
    write(identifier, text);
    EXPECT_EQ(identify(), text.substr(0, 36));
    EXPECT_EQ(modeOf(identifier), 0600U) << "also when it was copied here by someone careless";
  }
  for (const std::string& text :
       {std::string(), std::string("\n"), std::string("torn"), kDerived.substr(1), kDerived + "0",
        kDerived + "\n\n", kDerived + "\r\n", " " + kDerived.substr(1), "G" + kDerived.substr(1),
        kDerived.substr(0, 8) + "0" + kDerived.substr(9), std::string(36, '-'),
        std::string(36, '\0'), std::string(5000, 'A')}) {
    write(identifier, text);
    EXPECT_THAT(refusalOf(state),
                AllOf(HasSubstr(identifier.string()),
                      HasSubstr("does not hold a vendor identifier"), HasSubstr("Restore it")))
        << text;
    EXPECT_EQ(textOf(identifier), text);
    EXPECT_FALSE(fs::exists(state / kStoreFileName))
        << "a store would look like an earlier release's";
  }
}

TEST_F(State, ThatSeveralMakeAtOnceHasOneIdentifier) {
  for (int round = 0; round < 5; ++round) {
    fs::remove_all(state);
    std::vector<std::string> found(6);
    atOnce([&](int thread) { found.at(static_cast<std::size_t>(thread)) = identify(); });
    EXPECT_THAT(found, testing::Each(found.front()));
    EXPECT_NE(found.front(), "");
  }
}

}  // namespace

}  // namespace orlix
