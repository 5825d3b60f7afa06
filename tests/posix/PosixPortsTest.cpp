// The small ports on Linux (bundles, log, position), and all of them put together.

#include <chrono>
#include <fstream>
#include <sstream>
#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "orlixkit/posix/AnchorBundle.h"
#include "orlixkit/posix/ChainedBundle.h"
#include "orlixkit/posix/DirectoryBundle.h"
#include "orlixkit/posix/PosixPorts.h"
#include "tests/ports/BundleContract.h"
#include "tests/ports/DeviceContract.h"
#include "tests/ports/HttpClientContract.h"
#include "tests/ports/LocationManagerContract.h"
#include "tests/ports/SystemLogContract.h"
#include "tests/posix/PosixPlatform.h"
#include "tests/posix/TestCertificates.h"

namespace orlix {

namespace {

void write(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

TEST(Bundles, GiveTheirOwnFilesOnlyAndTheFirstOfAChainWins) {
  const TemporaryFolder folder;
  const Identity root = makeIdentity({.commonName = "Own root", .authority = true});
  write(folder.path() / "root.der", toText(root.der()));
  write(folder.path() / "root.pem", "Our root:\n" + root.pem());
  write(folder.path() / "rubbish", "-----BEGIN CERTIFICATE-----\nAAAA\n");
  write(folder.path() / "second" / "certificateroot.cer", "another root");
  write(folder.path() / "second" / "plain", "no ending");
  std::filesystem::create_directories(folder.path() / "second" / "folder.cer");
  for (const char* name : {"root.der", "root.pem"}) {
    const ChainedBundle chain({std::make_shared<DirectoryBundle>(folder.path() / "missing"),
                               std::make_shared<AnchorBundle>(folder.path() / name),
                               std::make_shared<DirectoryBundle>(folder.path() / "second")});
    EXPECT_EQ(chain.resource("certificateroot", "cer"), root.der());
    EXPECT_EQ(chain.resource("plain", ""), toBytes("no ending"));
    for (const auto& [resource, type] : Fields{{"certificateroot", "der"},
                                               {"../root", "der"},
                                               {"folder", "cer"},
                                               {"..", ""},
                                               {"", ""}}) {
      EXPECT_EQ(chain.resource(resource, type), std::nullopt) << resource << "." << type;
    }
  }
  for (const char* name : {"rubbish", "missing", "."}) {
    EXPECT_THROW(AnchorBundle(folder.path() / name), std::runtime_error) << name;
  }
}

TEST(PosixSystemLog, AMessageIsOneLineThatDrivesNoTerminal) {
  PosixSystemLog log(LogTarget::syslogAndStderr);
  for (const auto& [message, line] : Fields{{"plain å ☃ %s %n", "plain å ☃ %s %n"},
                                            {"two\nlines\r\n", "two\\nlines\\r\\n"},
                                            {"tab\there", "tab\\there"},
                                            {"\x1b[31mred\x7f", "\\x1B[31mred\\x7F"},
                                            {std::string("nul\0", 4), "nul\\x00"},
                                            {"\xC2\x9B"
                                             "31m",
                                             "\\x9B31m"},
                                            {"", ""}}) {
    testing::internal::CaptureStderr();
    log.write(message);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), line + "\n");
  }
}

PosixOptions optionsIn(const std::filesystem::path& folder) {
  PosixOptions options;
  options.applicationName = "test";
  options.stateDirectory = folder / "state";
  options.resourceDirectories = {folder / "resources"};
  options.logTarget = LogTarget::stderrOnly;
  options.location = {{59.91, 10.75}};
  return options;
}

/// The ports of a Linux host whose folders hold what the contracts ask for.
class PosixHostPorts {
 public:
  PosixHostPorts() {
    write(folder_.path() / "resources" / "a.cer", "one");
    write(folder_.path() / "resources" / "a.plist", "two");
    write(folder_.path() / "resources" / "b.cer", "");
  }
  Bundle& bundle() { return *ports_.bundle; }
  Device& device() { return *ports_.device; }
  LocationManager& locationManager() { return *ports_.locationManager; }
  void bringFix() {
    bool done = false;
    ports_.mainQueue->async([&done] { done = true; });
    ports_.mainQueue->runUntil([&done] { return done; });
  }
  SystemLog& log() {
    if (!std::exchange(captures_, true)) {
      testing::internal::CaptureStderr();
    }
    return *ports_.log;
  }
  std::vector<std::string> logged() {
    std::istringstream text(testing::internal::GetCapturedStderr());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
      lines.push_back(line);
    }
    return lines;
  }

 private:
  const TemporaryFolder folder_;
  const Ports ports_ = makePosixPorts(optionsIn(folder_.path()));
  bool captures_ = false;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, LocationManagerContract, PosixHostPorts);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, BundleContract, PosixHostPorts);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, DeviceContract, PosixHostPorts);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, SystemLogContract, PosixHostPorts);

TEST(PosixPorts, MakeAHostThatShutsDownPromptlyWhileWorkIsUnderWay) {
  const TemporaryFolder folder;
  write(folder.path() / "resources" / "a.plist", "list");
  PosixOptions options = optionsIn(folder.path());
  Host host(makePosixPorts(options), {});
  const Ports& ports = host.ports();
  EXPECT_EQ(ports.bundle->resource("a", "plist"), toBytes("list"));
  ports.userDefaults->setValue("key", 7);
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "state" / "defaults.db"));

  bool sleeping = false;
  std::atomic<bool> whole = true;
  ports.backgroundQueues->global(QualityOfService::high, [&] {
    ports.mainQueue->async([&sleeping] { sleeping = true; });
    whole = ports.clock->sleep(std::chrono::hours(1));
  });
  ports.mainQueue->runUntil([&sleeping] { return sleeping; });
  const auto before = std::chrono::steady_clock::now();
  host.shutdown();
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::minutes(1));
  EXPECT_FALSE(whole);

  options.anchorFile = folder.path() / "missing.pem";
  EXPECT_THROW(makePosixPorts(options), std::runtime_error);
}

}  // namespace

}  // namespace orlix
