#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/MainQueue.h"

namespace orlix {

/// Rules that every clock and its conditions keep. `Platform` as for the background queues.
template <class Platform>
class ClockContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  BackgroundQueues& queues = platform.backgroundQueues();
  Clock& clock = platform.clock();

  /// Runs the task off the main thread and waits for its end.
  void inBackground(const Task& task) {
    bool done = false;
    queues.global(QualityOfService::userInitiated, [this, task, &done] {
      task();
      mainQueue.async([&done] { done = true; });
    });
    mainQueue.runUntil([&done] { return done; });
  }
};
TYPED_TEST_SUITE_P(ClockContract);

TYPED_TEST_P(ClockContract, ASleepLastsAtLeastAsLongAsAskedOnBothScales) {
  using std::chrono::milliseconds;
  for (const Duration asked :
       {Duration(milliseconds(15)), Duration(0), Duration(milliseconds(-5))}) {
    SteadyTime::duration steady{};
    CalendarTime::duration calendar{};
    bool whole = false;
    this->inBackground([&, this] {
      const SteadyTime from = this->clock.steadyNow();
      const CalendarTime fromDate = this->clock.now();
      whole = this->clock.sleep(asked);
      steady = this->clock.steadyNow() - from;
      calendar = this->clock.now() - fromDate;
    });
    EXPECT_TRUE(whole);
    EXPECT_GE(steady, asked);
    EXPECT_LT(steady, std::chrono::minutes(1));
    EXPECT_GE(calendar, asked - milliseconds(5)) << "the two scales may be read a moment apart";
  }
}

TYPED_TEST_P(ClockContract, AWaitEndsAtItsDeadlineWithTheLockHeld) {
  const std::unique_ptr<Condition> condition = this->clock.newCondition();
  this->inBackground([&, this] {
    const SteadyTime deadline = this->clock.steadyNow() + std::chrono::milliseconds(15);
    condition->lock();
    while (condition->waitUntil(deadline)) {
    }
    EXPECT_GE(this->clock.steadyNow(), deadline);
    EXPECT_FALSE(condition->waitUntil(deadline)) << "a deadline in the past ends the wait at once";
    condition->unlock();
    condition->lock();
    condition->unlock();
  });
}

TYPED_TEST_P(ClockContract, ASignalWakesEveryWaiterWithTheLockHeldOrNot) {
  for (const bool lockHeld : {true, false}) {
    const std::unique_ptr<Condition> condition = this->clock.newCondition();
    const SteadyTime deadline = this->clock.steadyNow() + std::chrono::seconds(60);
    constexpr int waiters = 3;
    const std::unique_ptr<Condition> arrived = this->clock.newCondition();
    int waiting = 0;
    bool allArrived = false;
    bool open = false;
    int through = 0;
    for (int i = 0; i < waiters; ++i) {
      this->queues.global(QualityOfService::high, [&, this] {
        condition->lock();
        if (++waiting == waiters) {
          arrived->lock();
          allArrived = true;
          arrived->unlock();
          arrived->signal();
        }
        while (!open && condition->waitUntil(deadline)) {
        }
        const bool passed = open;
        condition->unlock();
        this->mainQueue.async([&through, passed] { through += passed ? 1 : 0; });
      });
    }
    this->queues.global(QualityOfService::high, [&, this] {
      arrived->lock();
      while (!allArrived && arrived->waitUntil(deadline)) {
      }
      arrived->unlock();
      condition->lock();
      open = true;
      if (lockHeld) {
        condition->signal();
        condition->unlock();
      } else {
        condition->unlock();
        condition->signal();
      }
      this->mainQueue.async([&through] { ++through; });
    });
    this->mainQueue.runUntil([&] { return through == waiters + 1; });
    EXPECT_LT(this->clock.steadyNow(), deadline);
  }
}

TYPED_TEST_P(ClockContract, NothingWaitsAfterTheShutdown) {
  const std::unique_ptr<Condition> condition = this->clock.newCondition();
  this->queues.close();
  const SteadyTime before = this->clock.steadyNow();
  EXPECT_FALSE(this->clock.sleep(std::chrono::hours(1)));
  condition->lock();
  condition->signal();
  EXPECT_FALSE(condition->waitUntil(before + std::chrono::hours(1)));
  condition->unlock();
  const std::unique_ptr<Condition> late = this->clock.newCondition();
  late->lock();
  EXPECT_FALSE(late->waitUntil(before + std::chrono::hours(1)));
  late->unlock();
  EXPECT_LT(this->clock.steadyNow() - before, std::chrono::minutes(1));
}

REGISTER_TYPED_TEST_SUITE_P(ClockContract, ASleepLastsAtLeastAsLongAsAskedOnBothScales,
                            AWaitEndsAtItsDeadlineWithTheLockHeld,
                            ASignalWakesEveryWaiterWithTheLockHeldOrNot,
                            NothingWaitsAfterTheShutdown);

}  // namespace orlix
