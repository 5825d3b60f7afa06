// SPDX-License-Identifier: Apache-2.0

// The bundles and the log on Linux, and all of the ports put together.

#include <atomic>
#include <chrono>
#include <utility>

#include "orlixkit/host/Host.h"
#include "orlixkit/posix/AnchorBundle.h"
#include "orlixkit/posix/ChainedBundle.h"
#include "orlixkit/posix/DirectoryBundle.h"
#include "tests/posix/PosixPlatform.h"
#include "tests/posix/TestCertificates.h"

namespace orlix {

namespace {

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
    for (const char* none : {"../root", "..", "folder", "certificateroot", ""}) {
      EXPECT_EQ(chain.resource(none, "der"), std::nullopt) << none;
      EXPECT_EQ(chain.resource(none, ""), std::nullopt) << none;
    }
    EXPECT_EQ(chain.resource("folder", "cer"), std::nullopt);
  }
  for (const char* name : {"rubbish", "missing", "."}) {
    EXPECT_THROW(AnchorBundle(folder.path() / name), std::runtime_error) << name;
  }
}

TEST(PosixSystemLog, AMessageIsOneLineThatDrivesNoTerminal) {
  PosixSystemLog log(LogTarget::syslogAndStderr);
  const std::pair<std::string, std::string> rows[] = {{"plain å ☃ %s %n", "plain å ☃ %s %n"},
                                                      {"two\nlines\r\n", "two\\nlines\\r\\n"},
                                                      {"tab\there", "tab\\there"},
                                                      {"\x1b[31mred\x7f", "\\x1B[31mred\\x7F"},
                                                      {std::string("nul\0", 4), "nul\\x00"},
                                                      {"\u009B31m", "\\x9B31m"},
                                                      {"\u0080\u009F\u00A0", "\\x80\\x9F\u00A0"},
                                                      {"cut off\xC2", "cut off\xC2"},
                                                      {"", ""}};
  for (const auto& [message, line] : rows) {
    testing::internal::CaptureStderr();
    log.write(message);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), line + "\n");
  }
}

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
