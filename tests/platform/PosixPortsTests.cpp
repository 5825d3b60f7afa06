// The small ports on Linux (device, bundles, log, position), and all of them put together.

#include <chrono>
#include <fstream>
#include <latch>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "orlixkit/platform/posix/AnchorBundle.h"
#include "orlixkit/platform/posix/ChainedBundle.h"
#include "orlixkit/platform/posix/DirectoryBundle.h"
#include "orlixkit/platform/posix/FixedLocationManager.h"
#include "orlixkit/platform/posix/PosixDevice.h"
#include "orlixkit/platform/posix/PosixPorts.h"
#include "tests/platform/PosixPlatform.h"
#include "tests/platform/TestCertificates.h"

namespace orlix {

namespace {

void write(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}
void write(const std::filesystem::path& file, const Bytes& bytes) { write(file, toText(bytes)); }

constexpr auto uuidForm = "[0-9A-F]{8}-[0-9A-F]{4}-[48][0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";

}  // namespace

TEST(PosixDevice, TheVendorIdentifierIsOfTheMachineAndTheApplicationTogether) {
  const TemporaryFolder folder;
  const auto identifier = [&folder](const std::string& machine, const std::string& application) {
    write(folder.path() / "machine-id", machine + "\n");
    const PosixDevice device({application, folder.path() / "state", folder.path() / "machine-id"});
    return device.vendorIdentifier();
  };
  const std::string machine = "0123456789abcdef0123456789abcdef";
  const std::string first = identifier(machine, "shop");
  EXPECT_THAT(first, testing::MatchesRegex(uuidForm));
  EXPECT_EQ(identifier(machine, "shop"), first);
  EXPECT_NE(identifier(machine, "bank"), first);
  EXPECT_NE(identifier("f" + machine.substr(1), "shop"), first);
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "state")) << "nothing needs to be kept";
}

TEST(PosixDevice, WithoutAMachineIdOneRandomIdentifierIsKept) {
  const TemporaryFolder folder;
  const std::filesystem::path state = folder.path() / "a" / "state";
  for (const char* unusable : {"", "uninitialized\n"}) {
    write(folder.path() / "machine-id", unusable);
    constexpr int starters = 4;
    std::latch together(starters);
    std::vector<std::string> seen(starters);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < starters; ++i) {
      threads.emplace_back([&, i] {
        together.arrive_and_wait();
        seen[i] = PosixDevice({"shop", state, folder.path() / "machine-id"}).vendorIdentifier();
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    EXPECT_THAT(seen[0], testing::MatchesRegex(uuidForm));
    EXPECT_THAT(seen, testing::Each(seen[0])) << "also when several start at once";
  }
  write(state / "vendor-identifier", std::string("torn"));
  EXPECT_THROW(PosixDevice({"shop", state, folder.path() / "none"}), std::runtime_error);
}

TEST(Bundles, ADirectoryGivesItsOwnFilesOnlyAndTheFirstOfAChainWins) {
  const TemporaryFolder folder;
  write(folder.path() / "first" / "list.plist", std::string("first"));
  write(folder.path() / "second" / "list.plist", std::string("second"));
  write(folder.path() / "second" / "plain", std::string("no ending"));
  write(folder.path() / "secret.txt", std::string("outside"));
  std::filesystem::create_directories(folder.path() / "second" / "folder.cer");
  const ChainedBundle chain({std::make_shared<DirectoryBundle>(folder.path() / "missing"),
                             std::make_shared<DirectoryBundle>(folder.path() / "first"),
                             std::make_shared<DirectoryBundle>(folder.path() / "second")});
  EXPECT_EQ(chain.resource("list", "plist"), toBytes("first"));
  EXPECT_EQ(chain.resource("plain", ""), toBytes("no ending"));
  for (const auto& [name, type] : {std::pair<std::string, std::string>{"absent", "plist"},
                                   {"../secret", "txt"},
                                   {"folder", "cer"},
                                   {"..", ""},
                                   {"", ""}}) {
    EXPECT_EQ(chain.resource(name, type), std::nullopt) << name << "." << type;
  }
}

TEST(Bundles, AnAnchorFileOfEitherFormStandsInForTheRoot) {
  const TemporaryFolder folder;
  const Identity root = makeIdentity({.commonName = "Own root", .authority = true});
  write(folder.path() / "root.der", root.der());
  write(folder.path() / "root.pem", "Our root:\n" + root.pem());
  for (const char* name : {"root.der", "root.pem"}) {
    const AnchorBundle bundle(folder.path() / name);
    EXPECT_EQ(bundle.resource("certificateroot", "cer"), root.der()) << name;
    EXPECT_EQ(bundle.resource("certificateroot", "der"), std::nullopt);
    EXPECT_EQ(bundle.resource("other", "cer"), std::nullopt);
  }
  write(folder.path() / "rubbish", std::string("-----BEGIN CERTIFICATE-----\nAAAA\n"));
  write(folder.path() / "empty", std::string());
  for (const char* name : {"rubbish", "empty", "missing", "."}) {
    EXPECT_THROW(AnchorBundle(folder.path() / name), std::runtime_error) << name;
  }
}

TEST(PosixSystemLog, AMessageIsOneLineThatDrivesNoTerminal) {
  for (const auto& [message, line] : {std::pair<std::string, std::string>{"plain å ☃", "plain å ☃"},
                                      {"two\nlines\r\n", "two\\nlines\\r\\n"},
                                      {"tab\there", "tab\\there"},
                                      {"\x1b[31mred", "\\x1B[31mred"},
                                      {std::string("nul\0", 4), "nul\\x00"},
                                      {"\x7f", "\\x7F"},
                                      {"\xC2\x9B"
                                       "31m",
                                       "\\x9B31m"},
                                      {"100 %s %n", "100 %s %n"},
                                      {"", ""}}) {
    PosixSystemLog log(LogTarget::stderrOnly);
    testing::internal::CaptureStderr();
    log.write(message);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), line + "\n");
  }
}

TEST(PosixSystemLog, LinesOfManyThreadsDoNotMix) {
  PosixSystemLog log(LogTarget::syslogAndStderr);
  testing::internal::CaptureStderr();
  std::vector<std::thread> threads;
  for (const char letter : {'a', 'b', 'c'}) {
    threads.emplace_back([&log, line = std::string(500, letter)] {
      for (int i = 0; i < 50; ++i) {
        log.write(line);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::istringstream written(testing::internal::GetCapturedStderr());
  std::set<std::string> distinct;
  int lines = 0;
  for (std::string line; std::getline(written, line); ++lines) {
    distinct.insert(line);
  }
  EXPECT_EQ(lines, 150);
  EXPECT_EQ(distinct.size(), 3u);
}

TEST(PosixBackgroundQueues, ThreadsAreKeptForTheNextTasksAndCarryAName) {
  PosixPlatform platform;
  std::set<std::thread::id> threads;
  std::string name;
  for (int i = 0; i < 40; ++i) {
    bool done = false;
    platform.backgroundQueues().global(QualityOfService::high, [&] {
      char text[16] = "";
      pthread_getname_np(pthread_self(), text, sizeof text);
      platform.mainQueue().async([&, id = std::this_thread::get_id(), own = std::string(text)] {
        threads.insert(id);
        name = own;
        done = true;
      });
    });
    platform.mainQueue().runUntil([&done] { return done; });
  }
  EXPECT_LE(threads.size(), 6u);
  EXPECT_EQ(name, "orlix-worker");
}

TEST(FixedLocationManager, EachStartBringsOneFixUnlessStoppedBefore) {
  struct Recorder : LocationManagerDelegate {
    void didUpdateLocations(const std::vector<LocationFix>& fixes) override {
      all.insert(all.end(), fixes.begin(), fixes.end());
    }
    void didFailWithError(const std::string&) override { ADD_FAILURE(); }
    std::vector<LocationFix> all;
  } recorder;
  PosixPlatform platform;
  // Ports are shared; these live as long as the test.
  const std::shared_ptr<MainQueue> queue(&platform.mainQueue(), [](MainQueue*) {});
  const std::shared_ptr<Clock> clock(&platform.clock(), [](Clock*) {});
  auto manager = std::make_unique<FixedLocationManager>(59.91, 10.75, queue, clock);
  const auto drain = [&] {
    bool done = false;
    queue->async([&done] { done = true; });
    queue->runUntil([&done] { return done; });
  };
  manager->startUpdatingLocation();
  drain();
  EXPECT_TRUE(recorder.all.empty()) << "no delegate yet";
  manager->setDelegate(&recorder);
  manager->startUpdatingLocation();
  EXPECT_TRUE(recorder.all.empty()) << "not before the start has returned";
  drain();
  ASSERT_EQ(recorder.all.size(), 1u);
  EXPECT_DOUBLE_EQ(recorder.all[0].latitude, 59.91);
  EXPECT_DOUBLE_EQ(recorder.all[0].longitude, 10.75);
  EXPECT_LT(clock->now() - recorder.all[0].timestamp, std::chrono::minutes(1));

  manager->startUpdatingLocation();
  manager->stopUpdatingLocation();
  drain();
  manager->startUpdatingLocation();
  manager.reset();
  drain();
  EXPECT_EQ(recorder.all.size(), 1u);
}

TEST(PosixPorts, MakeAHostThatShutsDownPromptlyWhileWorkIsUnderWay) {
  const TemporaryFolder folder;
  const Identity root = makeIdentity({.commonName = "Own root", .authority = true});
  write(folder.path() / "anchor.pem", root.pem());
  write(folder.path() / "resources" / "certificateroot.cer", std::string("built in"));
  write(folder.path() / "resources" / "a.plist", std::string("list"));
  PosixOptions options;
  options.applicationName = "test";
  options.stateDirectory = folder.path() / "state";
  options.anchorFile = folder.path() / "anchor.pem";
  options.resourceDirectories = {folder.path() / "resources"};
  options.logTarget = LogTarget::stderrOnly;
  options.location = {{59.91, 10.75}};
  Host host(makePosixPorts(options), {});
  const Ports& ports = host.ports();
  EXPECT_EQ(ports.bundle->resource("certificateroot", "cer"), root.der());
  EXPECT_EQ(ports.bundle->resource("a", "plist"), toBytes("list"));
  EXPECT_EQ(ports.device->vendorIdentifier().size(), 36u);
  EXPECT_NE(ports.device->model(), "");
  EXPECT_NE(ports.device->systemVersion(), "");
  EXPECT_THAT(ports.device->bundleShortVersion(),
              testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_NE(ports.locationManager, nullptr);
  ports.userDefaults->setInteger("key", 7);
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
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
  EXPECT_FALSE(whole);

  options.anchorFile = folder.path() / "missing.pem";
  EXPECT_THROW(makePosixPorts(options), std::runtime_error);
}

}  // namespace orlix
