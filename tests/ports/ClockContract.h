// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/MainQueue.h"

namespace orlix {

/// Rules that every clock and its conditions keep. `Platform` as for the background queues.
template <class Platform>
class ClockContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  BackgroundQueues& queues = platform.backgroundQueues();
  Clock& clock = platform.clock();
  const std::unique_ptr<Condition> condition = clock.newCondition();

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

TYPED_TEST_P(ClockContract, ASleepAndAWaitLastAtLeastAsLongAsAskedOnBothScales) {
  using std::chrono::milliseconds;
  for (const Duration asked : {milliseconds(15), milliseconds(0), milliseconds(-5)}) {
    this->inBackground([&, this] {
      const SteadyTime from = this->clock.steadyNow();
      const CalendarTime fromDate = this->clock.now();
      EXPECT_TRUE(this->clock.sleep(asked));
      EXPECT_GE(this->clock.steadyNow() - from, asked);
      EXPECT_LT(this->clock.steadyNow() - from, std::chrono::minutes(1));
      EXPECT_GE(this->clock.now() - fromDate, asked - milliseconds(5))
          << "the two scales may be read a moment apart";
      const SteadyTime deadline = this->clock.steadyNow() + asked;
      this->condition->lock();
      while (this->condition->waitUntil(deadline)) {
      }
      EXPECT_GE(this->clock.steadyNow(), deadline);
      EXPECT_FALSE(this->condition->waitUntil(deadline)) << "at once";
      this->condition->unlock();
    });
  }
}

TYPED_TEST_P(ClockContract, NothingWaitsAfterTheShutdown) {
  this->queues.close();
  const SteadyTime before = this->clock.steadyNow();
  EXPECT_FALSE(this->clock.sleep(std::chrono::hours(1)));
  const std::unique_ptr<Condition> late = this->clock.newCondition();
  for (Condition* one : {this->condition.get(), late.get()}) {
    one->lock();
    one->signal();
    EXPECT_FALSE(one->waitUntil(before + std::chrono::hours(1)));
    one->unlock();
  }
  EXPECT_LT(this->clock.steadyNow() - before, std::chrono::minutes(1));
}

REGISTER_TYPED_TEST_SUITE_P(ClockContract, ASleepAndAWaitLastAtLeastAsLongAsAskedOnBothScales,
                            NothingWaitsAfterTheShutdown);

}  // namespace orlix
