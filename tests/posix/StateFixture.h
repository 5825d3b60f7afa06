// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "orlixkit/posix/DirectoryBundle.h"
#include "orlixkit/posix/SqliteUserDefaults.h"
#include "tests/posix/PosixPlatform.h"

namespace orlix {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

/// What an installation keeps on the disk, in a folder that goes with the test.
class StateFixture : public testing::Test {
 protected:
  /// What its StoreException says; empty when there is none.
  static std::string failureOf(const std::function<void()>& task) {
    try {
      task();
    } catch (const StoreException& error) {
      return error.what();
    }
    return "";
  }
  /// Six threads, which begin their work together.
  static void atOnce(const std::function<void(int)>& work) {
    std::latch together(6);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 6; ++thread) {
      threads.emplace_back([&, thread] {
        together.arrive_and_wait();
        work(thread);
      });
    }
  }
  static std::string textOf(const fs::path& file) { return toText(readFile(file).value()); }
  /// 0 when there is no such file.
  static unsigned modeOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0U;
  }

  TemporaryFolder folder;
  const fs::path state = folder.path() / "state";
};

}  // namespace orlix
