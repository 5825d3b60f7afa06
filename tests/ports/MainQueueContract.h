// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/MainQueue.h"

namespace orlix {

/// Rules that every main queue keeps. `Platform` is made for each test, on the test's thread,
/// which is its main thread. It offers
///   MainQueue& mainQueue();  BackgroundQueues& backgroundQueues();
///   std::vector<std::string> logged();   // lines of the log so far
template <class Platform>
class MainQueueContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& queue = platform.mainQueue();
};
TYPED_TEST_SUITE_P(MainQueueContract);

TYPED_TEST_P(MainQueueContract, KeepsTheOrderOfEachThreadThatCallsAndKnowsItsOwn) {
  constexpr std::size_t kThreads = 4;
  constexpr int kCalls = 200;
  std::vector<std::vector<int>> ran(kThreads);
  std::size_t total = 0;
  int foreign = 0;
  const auto call = [&, this](std::size_t thread) {
    for (int i = 0; i < kCalls; ++i) {
      const bool current = this->queue.isCurrent();
      this->queue.async([&, thread, i, current] {
        ran[thread].push_back(i);
        foreign += current ? 0 : 1;
        total += this->queue.isCurrent() ? 1 : 0;
      });
    }
  };
  call(0);
  EXPECT_TRUE(ran[0].empty()) << "not before it is asked";
  for (std::size_t thread = 1; thread < kThreads; ++thread) {
    this->platform.backgroundQueues().global(QualityOfService::high, [=] { call(thread); });
  }
  this->queue.runUntil([&] { return total == kThreads * kCalls; });
  EXPECT_EQ(foreign, 3 * kCalls);
  for (const std::vector<int>& one : ran) {
    for (int i = 0; i < kCalls; ++i) {
      ASSERT_EQ(one[static_cast<std::size_t>(i)], i);
    }
  }
}

TYPED_TEST_P(MainQueueContract, AsksAnewAfterEveryTaskWhetherItIsDoneAndATaskMayRunItAgain) {
  std::string ran;
  this->queue.async([&] {
    ran += "outer ";
    this->queue.runUntil([&] { return ran.ends_with("inner "); });
    ran += "end ";
  });
  for (const char* name : {"inner ", "next "}) {
    this->queue.async([&ran, name] { ran += name; });
  }
  for (const char* wanted : {"outer inner end ", "outer inner end ", "outer inner end next "}) {
    this->queue.runUntil([&] { return ran == wanted; });
    EXPECT_EQ(ran, wanted);
  }
}

TYPED_TEST_P(MainQueueContract, LogsWhatATaskThrowsAndGoesOn) {
  bool wentOn = false;
  this->queue.async([] { throw std::runtime_error("the button broke"); });
  this->queue.async([] { throw 7; });
  this->queue.async([&] { wentOn = true; });
  this->queue.runUntil([&] { return wentOn; });
  const std::vector<std::string> lines = this->platform.logged();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find("the button broke"), std::string::npos) << lines[0];
}

TYPED_TEST_P(MainQueueContract, CloseEndsEveryRunAndReleasesWhatWasPending) {
  const auto held = std::make_shared<int>(0);
  std::string ran;
  const auto task = [&ran, held](const char* name) { return [&ran, held, name] { ran += name; }; };
  this->queue.async([&] {
    this->queue.async(task("before "));
    this->queue.async([this] { this->queue.close(); });
    this->queue.async(task("after "));
    this->queue.runUntil([] { return false; });
  });
  this->queue.async(task("first "));
  this->queue.runUntil([] { return false; });
  this->queue.async(task("late "));
  this->queue.runUntil([] { return false; });
  EXPECT_EQ(ran, "first before ");
  EXPECT_EQ(held.use_count(), 2) << "only `task` still holds it";
}

REGISTER_TYPED_TEST_SUITE_P(MainQueueContract, KeepsTheOrderOfEachThreadThatCallsAndKnowsItsOwn,
                            AsksAnewAfterEveryTaskWhetherItIsDoneAndATaskMayRunItAgain,
                            LogsWhatATaskThrowsAndGoesOn,
                            CloseEndsEveryRunAndReleasesWhatWasPending);

}  // namespace orlix
