#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/MainQueue.h"

namespace orlix {

/// Rules that every main queue keeps. `Platform` is made anew for each test, on the test's thread,
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

TYPED_TEST_P(MainQueueContract, RunsTasksInTheOrderOfTheirCallsAndNotBeforeItIsAsked) {
  std::vector<int> ran;
  for (int i = 0; i < 100; ++i) {
    this->queue.async([&ran, i] { ran.push_back(i); });
  }
  EXPECT_TRUE(ran.empty());
  this->queue.runUntil([&] { return ran.size() == 100; });
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(ran[static_cast<std::size_t>(i)], i);
  }
}

TYPED_TEST_P(MainQueueContract, AsksAnewAfterEveryTaskWhetherItIsDone) {
  int ran = 0;
  for (int i = 0; i < 3; ++i) {
    this->queue.async([&ran] { ++ran; });
  }
  this->queue.runUntil([&] { return ran == 2; });
  EXPECT_EQ(ran, 2);
  this->queue.runUntil([&] { return ran == 2; });
  EXPECT_EQ(ran, 2) << "what holds already is not waited for";
  this->queue.runUntil([&] { return ran == 3; });
  EXPECT_EQ(ran, 3);
}

TYPED_TEST_P(MainQueueContract, ATaskMayRunItAgain) {
  std::vector<std::string> ran;
  bool innerDone = false;
  this->queue.async([&] {
    ran.emplace_back("outer begins");
    this->queue.runUntil([&] { return innerDone; });
    ran.emplace_back("outer ends");
  });
  this->queue.async([&] {
    ran.emplace_back("inner");
    innerDone = true;
  });
  this->queue.runUntil([&] { return ran.size() == 3; });
  EXPECT_EQ(ran, (std::vector<std::string>{"outer begins", "inner", "outer ends"}));
}

TYPED_TEST_P(MainQueueContract, KnowsWhetherItsThreadIsTheCurrentOne) {
  EXPECT_TRUE(this->queue.isCurrent());
  bool inTask = false;
  bool inBackground = true;
  bool done = false;
  this->platform.backgroundQueues().global(QualityOfService::high, [&] {
    const bool current = this->queue.isCurrent();
    this->queue.async([&, current] {
      inBackground = current;
      inTask = this->queue.isCurrent();
      done = true;
    });
  });
  this->queue.runUntil([&] { return done; });
  EXPECT_TRUE(inTask);
  EXPECT_FALSE(inBackground);
}

TYPED_TEST_P(MainQueueContract, KeepsTheOrderOfEachThreadThatCalls) {
  constexpr int threads = 4;
  constexpr int calls = 200;
  std::vector<std::vector<int>> ran(threads);
  int total = 0;
  for (std::size_t thread = 0; thread < threads; ++thread) {
    this->platform.backgroundQueues().global(QualityOfService::high, [&, thread] {
      for (int i = 0; i < calls; ++i) {
        this->queue.async([&, thread, i] {
          ran[thread].push_back(i);
          ++total;
        });
      }
    });
  }
  this->queue.runUntil([&] { return total == threads * calls; });
  for (const std::vector<int>& one : ran) {
    for (int i = 0; i < calls; ++i) {
      ASSERT_EQ(one[static_cast<std::size_t>(i)], i);
    }
  }
}

TYPED_TEST_P(MainQueueContract, LogsWhatATaskThrowsAndGoesOn) {
  bool wentOn = false;
  this->queue.async([] { throw std::runtime_error("the button broke"); });
  this->queue.async([] { throw 7; });
  this->queue.async([&] { wentOn = true; });
  this->queue.runUntil([&] { return wentOn; });
  EXPECT_TRUE(wentOn);
  const std::vector<std::string> lines = this->platform.logged();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find("the button broke"), std::string::npos) << lines[0];
}

TYPED_TEST_P(MainQueueContract, CloseEndsEveryRunAndReleasesWhatWasPending) {
  const auto held = std::make_shared<int>(0);
  bool dropped = true;
  this->queue.async([&] {
    this->queue.async([&dropped, held] { dropped = false; });
    this->queue.async([this] { this->queue.close(); });
    this->queue.async([&dropped, held] { dropped = false; });
    this->queue.runUntil([] { return false; });
  });
  bool first = true;
  this->queue.async([&first, held] { first = false; });
  this->queue.runUntil([] { return false; });
  EXPECT_FALSE(first) << "it stood before the close";
  EXPECT_FALSE(dropped) << "so did the first of the later ones";
  EXPECT_EQ(held.use_count(), 1) << "the one after it is released without being run";

  bool ran = false;
  this->queue.async([&ran, held] { ran = true; });
  this->queue.runUntil([] { return false; });
  EXPECT_FALSE(ran);
  EXPECT_EQ(held.use_count(), 1);
}

REGISTER_TYPED_TEST_SUITE_P(MainQueueContract, RunsTasksInTheOrderOfTheirCallsAndNotBeforeItIsAsked,
                            AsksAnewAfterEveryTaskWhetherItIsDone, ATaskMayRunItAgain,
                            KnowsWhetherItsThreadIsTheCurrentOne,
                            KeepsTheOrderOfEachThreadThatCalls, LogsWhatATaskThrowsAndGoesOn,
                            CloseEndsEveryRunAndReleasesWhatWasPending);

}  // namespace orlix
