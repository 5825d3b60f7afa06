// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/posix/PosixPorts.h"
#include "tests/TemporaryFolder.h"

namespace orlix {

using test::TemporaryFolder;

inline void write(const std::filesystem::path& file, const std::string& bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

inline PosixOptions optionsIn(const std::filesystem::path& folder) {
  PosixOptions options;
  options.applicationName = "test";
  options.stateDirectory = folder / "state";
  options.resourceDirectories = {folder / "resources"};
  options.logTarget = LogTarget::stderrOnly;
  options.location = {{59.91, 10.75}};
  return options;
}

/// The ports of a Linux host whose folders hold what the contracts ask for.
class PosixPlatform {
 public:
  PosixPlatform() {
    write(folder_.path() / "resources" / "a.cer", "one");
    write(folder_.path() / "resources" / "a.plist", "two");
    write(folder_.path() / "resources" / "b.cer", "");
  }
  ~PosixPlatform() { backgroundQueues().close(); }
  PosixPlatform(const PosixPlatform&) = delete;
  PosixPlatform& operator=(const PosixPlatform&) = delete;

  MainQueue& mainQueue() { return *ports_.mainQueue; }
  BackgroundQueues& backgroundQueues() { return *ports_.backgroundQueues; }
  Clock& clock() { return *ports_.clock; }
  HttpClient& httpClient() { return *ports_.httpClient; }
  UserDefaults& userDefaults() { return *ports_.userDefaults; }
  Bundle& bundle() { return *ports_.bundle; }
  Device& device() { return *ports_.device; }
  SystemLog& log() { return *ports_.log; }
  LocationManager& locationManager() { return *ports_.locationManager; }
  void bringFix() {
    bool done = false;
    mainQueue().async([&done] { done = true; });
    mainQueue().runUntil([&done] { return done; });
  }

 private:
  const TemporaryFolder folder_;
  const Ports ports_ = makePosixPorts(optionsIn(folder_.path()));
};

/// The same, with its log caught.
class LoggedPlatform : public PosixPlatform {
 public:
  LoggedPlatform() { testing::internal::CaptureStderr(); }
  ~LoggedPlatform() { logged(); }
  LoggedPlatform(const LoggedPlatform&) = delete;
  LoggedPlatform& operator=(const LoggedPlatform&) = delete;

  std::vector<std::string> logged() {
    if (caught_) {
      std::istringstream text(testing::internal::GetCapturedStderr());
      caught_ = false;
      for (std::string line; std::getline(text, line);) {
        lines_.push_back(line);
      }
    }
    return lines_;
  }

 private:
  bool caught_ = true;
  std::vector<std::string> lines_;
};

}  // namespace orlix
