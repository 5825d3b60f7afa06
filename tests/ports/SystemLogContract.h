// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "orlixkit/ports/SystemLog.h"

namespace orlix {

/// Rules that every log keeps. `Platform` offers one: SystemLog& log(), and the lines that it has
/// taken: std::vector<std::string> logged();
template <class Platform>
class SystemLogContract : public testing::Test {
 protected:
  Platform platform;
};
TYPED_TEST_SUITE_P(SystemLogContract);

TYPED_TEST_P(SystemLogContract, TakesWholeLinesFromAnyThread) {
  constexpr int kThreads = 8;
  constexpr int kLines = 50;
  SystemLog& log = this->platform.log();
  std::vector<std::string> expected;
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      const std::string line(static_cast<std::size_t>(20 + thread),
                             static_cast<char>('a' + thread));
      expected.insert(expected.end(), kLines, line);
      threads.emplace_back([&log, line] {
        for (int i = 0; i < kLines; ++i) {
          log.write(line);
        }
      });
    }
  }
  EXPECT_THAT(this->platform.logged(), testing::UnorderedElementsAreArray(expected));
}

REGISTER_TYPED_TEST_SUITE_P(SystemLogContract, TakesWholeLinesFromAnyThread);

}  // namespace orlix
