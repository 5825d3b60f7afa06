// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/MainQueue.h"

namespace orlix {

/// Rules that every implementation of the background queues keeps. `Platform` is made for each
/// test, on the test's thread, which is its main thread. It offers
///   MainQueue& mainQueue();  BackgroundQueues& backgroundQueues();  Clock& clock();
/// all of one host: closing the background queues is the shutdown that ends the clock's waits.
template <class Platform>
class BackgroundQueuesContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  BackgroundQueues& queues = platform.backgroundQueues();
  const std::unique_ptr<Condition> condition = platform.clock().newCondition();
  const SteadyTime deadline = platform.clock().steadyNow() + std::chrono::hours(5);

  /// Returns when `count` reports have come to the main queue.
  void awaitReports(int count) {
    mainQueue.runUntil([this, count] { return reports == count; });
  }
  void report() {
    mainQueue.async([this] { ++reports; });
  }
  /// Adds one to `arrived` and waits until it is `count`; whether that came. A signal has to wake
  /// every waiter, whether it comes with the lock held or not.
  bool meet(int count) {
    condition->lock();
    if (++arrived % 2 == 0) {
      condition->unlock();
      condition->signal();
      condition->lock();
    } else {
      condition->signal();
    }
    while (arrived < count && condition->waitUntil(deadline)) {
    }
    const bool all = arrived >= count;
    condition->unlock();
    return all;
  }

  int reports = 0;  // main thread
  int arrived = 0;  // guarded by the condition
};
TYPED_TEST_SUITE_P(BackgroundQueuesContract);

TYPED_TEST_P(BackgroundQueuesContract, GlobalTasksRunSideBySideWhateverTheirService) {
  std::atomic<int> sawAll = 0;
  for (const int met : {5, 12}) {
    for (int i = this->reports; i < met; ++i) {
      this->queues.global(static_cast<QualityOfService>(i % 3), [&, this, met] {
        sawAll += this->meet(met) ? 1 : 0;
        this->report();
      });
    }
    this->awaitReports(met);
    EXPECT_EQ(sawAll, met) << "each waits for all others, so all must run at once";
  }
}

TYPED_TEST_P(BackgroundQueuesContract, AnOperationQueueRunsOneAtATimeInTheOrderAdded) {
  const std::shared_ptr<OperationQueue> queue = this->queues.newOperationQueue();
  std::vector<int> ran;  // no lock: the queue's order is what orders the accesses
  std::atomic<int> inside = 0;
  bool alone = true;
  this->queues.global(QualityOfService::high, [] { throw 7; });
  queue->add([] { throw std::runtime_error("logged, and the queue goes on"); });
  for (int i = 0; i < 200; ++i) {
    queue->add([&, i] {
      alone = alone && inside.fetch_add(1) == 0;
      ran.push_back(i);
      inside.fetch_sub(1);
    });
  }
  queue->add([&, this] { queue->add([this] { this->report(); }); });
  this->awaitReports(1);
  EXPECT_TRUE(alone);
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(ran.at(static_cast<std::size_t>(i)), i);
  }
}

TYPED_TEST_P(BackgroundQueuesContract, CloseWakesWhatSleepsAndWaitsAndDropsTheRest) {
  const std::shared_ptr<OperationQueue> queue = this->queues.newOperationQueue();
  const auto held = std::make_shared<int>(0);
  std::atomic<int> woken = 0;
  std::atomic<bool> ranLater = false;
  queue->add([&, this, held] {
    this->report();
    woken += this->platform.clock().sleep(std::chrono::hours(5)) ? 0 : 1;
  });
  queue->add([&, held] { ranLater = true; });
  this->queues.global(QualityOfService::background, [&, this, held] {
    this->report();
    woken += this->meet(2) ? 0 : 1;
  });
  this->awaitReports(2);
  const SteadyTime before = this->platform.clock().steadyNow();
  this->queues.close();
  EXPECT_LT(this->platform.clock().steadyNow() - before, std::chrono::minutes(1));
  EXPECT_EQ(woken, 2) << "both had ended when close returned";

  queue->add([&, held] { ranLater = true; });
  this->queues.newOperationQueue()->add([&, held] { ranLater = true; });
  this->queues.global(QualityOfService::high, [&, held] { ranLater = true; });
  this->queues.close();
  EXPECT_FALSE(ranLater);
  EXPECT_EQ(held.use_count(), 1) << "what is dropped is released";
}

REGISTER_TYPED_TEST_SUITE_P(BackgroundQueuesContract, GlobalTasksRunSideBySideWhateverTheirService,
                            AnOperationQueueRunsOneAtATimeInTheOrderAdded,
                            CloseWakesWhatSleepsAndWaitsAndDropsTheRest);

}  // namespace orlix
