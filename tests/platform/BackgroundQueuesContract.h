#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/MainQueue.h"

namespace orlix {

/// Rules that every implementation of the background queues keeps. `Platform` is made anew for each
/// test, on the test's thread, which is its main thread. It offers
///   MainQueue& mainQueue();  BackgroundQueues& backgroundQueues();  Clock& clock();
/// all of one host: closing the background queues is the shutdown that the clock hears of.
template <class Platform>
class BackgroundQueuesContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  BackgroundQueues& queues = platform.backgroundQueues();

  /// Runs `task` in the background and returns when `count` reports have come to the main queue.
  void awaitReports(int count) {
    mainQueue.runUntil([this, count] { return reports == count; });
  }
  void report() {
    mainQueue.async([this] { ++reports; });
  }

  int reports = 0;  // main thread
};
TYPED_TEST_SUITE_P(BackgroundQueuesContract);

TYPED_TEST_P(BackgroundQueuesContract, GlobalTasksRunSideBySideWhateverTheirService) {
  const std::unique_ptr<Condition> condition = this->platform.clock().newCondition();
  constexpr int tasks = 6;
  int met = 0;
  int sawAll = 0;
  for (int i = 0; i < tasks; ++i) {
    const auto service = static_cast<QualityOfService>(i % 3);
    this->queues.global(service, [&, this] {
      const SteadyTime deadline = this->platform.clock().steadyNow() + std::chrono::seconds(60);
      condition->lock();
      ++met;
      condition->signal();
      while (met < tasks && condition->waitUntil(deadline)) {
      }
      sawAll += met == tasks ? 1 : 0;
      condition->unlock();
      this->report();
    });
  }
  this->awaitReports(tasks);
  EXPECT_EQ(sawAll, tasks) << "each waits for all others, so all must run at once";
}

TYPED_TEST_P(BackgroundQueuesContract, AnOperationQueueRunsOneAtATimeInTheOrderAdded) {
  const std::shared_ptr<OperationQueue> queue = this->queues.newOperationQueue();
  std::vector<int> ran;  // no lock: the queue's order is what orders the accesses
  std::atomic<int> inside = 0;
  bool alone = true;
  constexpr int tasks = 200;
  for (int i = 0; i < tasks; ++i) {
    queue->add([&, i] {
      alone = alone && inside.fetch_add(1) == 0;
      ran.push_back(i);
      inside.fetch_sub(1);
    });
  }
  queue->add([this] { this->report(); });
  this->awaitReports(1);
  EXPECT_TRUE(alone);
  ASSERT_EQ(ran.size(), static_cast<std::size_t>(tasks));
  for (int i = 0; i < tasks; ++i) {
    ASSERT_EQ(ran[static_cast<std::size_t>(i)], i);
  }
}

TYPED_TEST_P(BackgroundQueuesContract, ABlockedOperationQueueHoldsUpNoOther) {
  const std::unique_ptr<Condition> condition = this->platform.clock().newCondition();
  const std::shared_ptr<OperationQueue> blocked = this->queues.newOperationQueue();
  const std::shared_ptr<OperationQueue> other = this->queues.newOperationQueue();
  bool released = false;
  bool signalled = false;
  const SteadyTime deadline = this->platform.clock().steadyNow() + std::chrono::seconds(60);
  blocked->add([&, this] {
    condition->lock();
    while (!released && condition->waitUntil(deadline)) {
    }
    signalled = released;
    condition->unlock();
    this->report();
  });
  other->add([&, this] {
    condition->lock();
    released = true;
    condition->unlock();
    condition->signal();
    this->report();
  });
  this->awaitReports(2);
  EXPECT_TRUE(signalled);
}

TYPED_TEST_P(BackgroundQueuesContract, TasksRunToTheirEndAfterTheirQueueIsReleased) {
  std::shared_ptr<OperationQueue> queue = this->queues.newOperationQueue();
  const std::unique_ptr<Condition> condition = this->platform.clock().newCondition();
  bool released = false;
  bool ranOn = false;
  queue->add([&, this] {
    condition->lock();
    const SteadyTime deadline = this->platform.clock().steadyNow() + std::chrono::seconds(60);
    while (!released && condition->waitUntil(deadline)) {
    }
    ranOn = released;
    condition->unlock();
  });
  queue->add([this] { this->report(); });
  queue.reset();
  this->queues.global(QualityOfService::high, [&] {
    condition->lock();
    released = true;
    condition->unlock();
    condition->signal();
  });
  this->awaitReports(1);
  EXPECT_TRUE(ranOn);
}

TYPED_TEST_P(BackgroundQueuesContract, ATaskMayAddTasksAlsoToItsOwnQueue) {
  const std::shared_ptr<OperationQueue> queue = this->queues.newOperationQueue();
  std::vector<int> order;
  queue->add([&, this] {
    queue->add([&, this] {
      order.push_back(2);
      this->queues.global(QualityOfService::background, [this] { this->report(); });
    });
    order.push_back(1);
  });
  this->awaitReports(1);
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TYPED_TEST_P(BackgroundQueuesContract, CloseWakesWhatSleepsAndWaitsAndDropsTheRest) {
  const std::unique_ptr<Condition> condition = this->platform.clock().newCondition();
  const std::shared_ptr<OperationQueue> queue = this->queues.newOperationQueue();
  const auto held = std::make_shared<int>(0);
  std::atomic<int> woken = 0;
  std::atomic<bool> ranLater = false;
  constexpr auto hours = std::chrono::hours(5);
  queue->add([&, this, held] {
    this->report();
    woken += this->platform.clock().sleep(hours) ? 0 : 1;
  });
  queue->add([&, held] { ranLater = true; });
  this->queues.global(QualityOfService::background, [&, this, held] {
    condition->lock();
    this->report();
    woken += condition->waitUntil(this->platform.clock().steadyNow() + hours) ? 0 : 1;
    condition->unlock();
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
                            ABlockedOperationQueueHoldsUpNoOther,
                            TasksRunToTheirEndAfterTheirQueueIsReleased,
                            ATaskMayAddTasksAlsoToItsOwnQueue,
                            CloseWakesWhatSleepsAndWaitsAndDropsTheRest);

}  // namespace orlix
