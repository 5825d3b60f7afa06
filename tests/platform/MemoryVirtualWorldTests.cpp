#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/Interleavings.h"
#include "orlixkit/platform/memory/MemoryHost.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

std::string messageOf(const Task& task) {
  try {
    task();
  } catch (const StuckError& stuck) {
    return stuck.what();
  }
  return "not stuck";
}

}  // namespace

TEST(VirtualWorld, TimeMovesOnlyWhenEverythingWaits) {
  MemoryHost host;
  const SteadyTime start = host.clock().steadyNow();
  std::vector<std::string> ran;
  const auto note = [&](const std::string& what) {
    const auto at =
        std::chrono::duration_cast<std::chrono::seconds>(host.clock().steadyNow() - start);
    ran.push_back(what + " at " + std::to_string(at.count()));
  };
  host.backgroundQueues().global(QualityOfService::high, [&] {
    host.clock().sleep(60s);
    note("slept 60");
  });
  host.backgroundQueues().global(QualityOfService::high, [&] {
    host.clock().sleep(2s);
    note("slept 2");
    host.mainQueue().async([&] { note("main"); });
  });
  host.runUntilIdle();
  EXPECT_TRUE(ran.empty()) << "no time has passed";
  host.runFor(1s);
  note("test");
  host.runUntil([&] { return ran.size() == 4; });
  EXPECT_EQ(ran,
            (std::vector<std::string>{"test at 1", "slept 2 at 2", "main at 2", "slept 60 at 60"}));
}

TEST(VirtualWorld, WhatIsDueAtOneMomentComesInTheOrderOfItsSetUp) {
  MemoryHost host;
  std::vector<int> ran;
  host.world().inBackground(
      "one", [&] { ran.push_back(1); }, 5s);
  host.backgroundQueues().global(QualityOfService::high, [&] {
    host.clock().sleep(5s);
    ran.push_back(2);
  });
  host.runUntilIdle();
  host.later(5s, [&] { ran.push_back(3); });
  host.world().inBackground(
      "four", [&] { ran.push_back(4); }, 5s);
  host.runFor(5s);
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 4}));
}

TEST(VirtualWorld, AMinuteOfPollingTakesMilliseconds) {
  MemoryHost host;
  int polls = 0;
  host.backgroundQueues().newOperationQueue()->add([&] {
    const SteadyTime deadline = host.clock().steadyNow() + 60s;
    while (host.clock().steadyNow() < deadline) {
      ++polls;
      host.clock().sleep(2s);
    }
    host.mainQueue().async([&polls] { polls += 100; });
  });
  const auto before = std::chrono::steady_clock::now();
  host.runUntil([&] { return polls > 100; });
  EXPECT_EQ(polls, 130);
  EXPECT_LT(std::chrono::steady_clock::now() - before, 1s);
}

TEST(VirtualWorld, SaysWhoWaitsWhenNothingCanEverRun) {
  MemoryHost host;
  const auto condition = host.clock().newCondition();
  host.backgroundQueues().global(QualityOfService::high, [&] {
    condition->lock();
    condition->waitUntil(kNever);
    condition->unlock();
  });
  EXPECT_EQ(
      messageOf([&] { host.runUntil([] { return false; }); }),
      "VirtualWorld: what is waited for does not come; waiting: high task waits for a signal");
  host.runUntilIdle();

  const auto own = host.clock().newCondition();
  own->lock();
  EXPECT_EQ(messageOf([&] { own->lock(); }),
            "VirtualWorld: nothing can run; waiting: high task waits for a signal, "
            "the main thread waits for a lock");
  own->unlock();
  host.shutdown();  // while the condition that the task waits on still stands
}

TEST(VirtualWorld, ATaskCannotSwallowThatItIsStuck) {
  MemoryHost host;
  host.mainQueue().async([&] {
    try {
      host.mainQueue().runUntil([] { return false; });
    } catch (const std::exception&) {
      // As a request does, which turns every failure into one of its own.
    }
  });
  EXPECT_THROW(host.runUntilIdle(), StuckError);
  host.runUntilIdle();
}

TEST(VirtualWorld, ARunWithoutEndIsCutOff) {
  MemoryHost host;
  host.world().inBackground(
      "late", [] {}, 2h);
  EXPECT_THROW(host.runUntil([] { return false; }), StuckError) << "an hour is the limit";
  host.world().setStepLimit(1000);
  std::function<void()> again = [&] { host.mainQueue().async(again); };
  host.mainQueue().async(again);
  EXPECT_THROW(host.runUntilIdle(), StuckError) << "no time passes";
}

TEST(VirtualWorld, ALockHeldByASleeperHoldsUpWhoeverWantsIt) {
  MemoryHost host;
  const auto condition = host.clock().newCondition();
  std::vector<std::string> ran;
  host.backgroundQueues().global(QualityOfService::high, [&] {
    condition->lock();
    host.clock().sleep(3s);
    ran.emplace_back("sleeper");
    condition->unlock();
  });
  host.backgroundQueues().global(QualityOfService::high, [&] {
    condition->lock();
    ran.emplace_back("second");
    condition->unlock();
  });
  host.runUntilIdle();
  condition->lock();
  ran.emplace_back("main");
  condition->unlock();
  host.runUntilIdle();
  EXPECT_EQ(ran, (std::vector<std::string>{"sleeper", "second", "main"}));
  EXPECT_THROW(condition->unlock(), std::logic_error);
  EXPECT_THROW(condition->waitUntil(kNever), std::logic_error);
}

TEST(VirtualWorld, WhileTheMainThreadWaitsItsQueueStandsStillAndTasksGoOn) {
  MemoryHost host;
  const auto condition = host.clock().newCondition();
  bool mainTaskRan = false;
  host.mainQueue().async([&] { mainTaskRan = true; });
  host.later(1s, [&] { mainTaskRan = true; });
  host.backgroundQueues().global(QualityOfService::high, [&] {
    host.clock().sleep(10s);
    condition->signal();
  });
  condition->lock();
  EXPECT_TRUE(condition->waitUntil(host.clock().steadyNow() + 60s));
  EXPECT_FALSE(condition->waitUntil(host.clock().steadyNow() + 60s));
  condition->unlock();
  EXPECT_FALSE(mainTaskRan);
  host.runUntilIdle();
  EXPECT_TRUE(mainTaskRan);
}

TEST(VirtualWorld, SettingTheCalendarMovesNoDeadline) {
  MemoryHost host;
  bool woke = false;
  host.backgroundQueues().global(QualityOfService::high, [&] {
    host.clock().sleep(60s);
    woke = true;
  });
  host.runFor(10s);
  const CalendarTime before = host.clock().now();
  host.clock().setNow(before + 24h);
  host.runFor(49s);
  EXPECT_FALSE(woke);
  EXPECT_EQ(host.clock().now() - before, 24h + 49s);
  host.runFor(1s);
  EXPECT_TRUE(woke);
}

TEST(VirtualWorld, OnlyItsOwnThreadsMayWait) {
  MemoryHost host;
  bool refused = false;
  std::thread stranger([&] {
    try {
      host.clock().sleep(1s);
    } catch (const std::logic_error&) {
      refused = true;
    }
  });
  stranger.join();
  EXPECT_TRUE(refused);
}

TEST(VirtualWorld, ShutsDownFromInsideATaskOfTheMainThread) {
  MemoryHost host;
  std::vector<std::string> ran;
  host.backgroundQueues().global(QualityOfService::high, [&] {
    ran.emplace_back(host.clock().sleep(1h) ? "slept" : "woken");
    host.mainQueue().async([&] { ran.emplace_back("report"); });
  });
  host.mainQueue().async([&] {
    host.shutdown();
    ran.emplace_back("shut down");
  });
  host.runUntil([&] { return ran.size() == 2; });
  EXPECT_EQ(ran, (std::vector<std::string>{"woken", "shut down"}));
  EXPECT_EQ(host.world().threadCount(), 0u);
}

TEST(Interleavings, TryEveryOrderOnce) {
  Interleavings search;
  std::set<std::string> orders;
  const std::size_t runs = search.run([&](const Chooser& chooser) {
    MemoryHost host({.chooser = chooser});
    std::string order;
    for (const char name : {'a', 'b', 'c'}) {
      host.backgroundQueues().global(QualityOfService::high, [&order, name] { order += name; });
    }
    host.runUntilIdle();
    orders.insert(order);
  });
  EXPECT_EQ(runs, 6u);
  EXPECT_EQ(orders, (std::set<std::string>{"abc", "acb", "bac", "bca", "cab", "cba"}));
  EXPECT_TRUE(search.complete());
}

TEST(Interleavings, KeepTheOrderOfTheMainQueueAndOfAnOperationQueue) {
  Interleavings search;
  std::set<std::string> orders;
  search.run([&](const Chooser& chooser) {
    MemoryHost host({.chooser = chooser});
    const auto queue = host.backgroundQueues().newOperationQueue();
    std::string order;
    for (const char* names : {"m1", "m2"}) {
      host.mainQueue().async([&order, names] { order += names; });
    }
    for (const char* names : {"q1", "q2"}) {
      queue->add([&order, names] { order += names; });
    }
    host.runUntilIdle();
    EXPECT_LT(order.find("m1"), order.find("m2"));
    EXPECT_LT(order.find("q1"), order.find("q2"));
    orders.insert(order);
  });
  EXPECT_EQ(orders.size(), 6u) << "every way to merge the two queues";
  EXPECT_TRUE(search.complete());
}

TEST(Interleavings, FindALostUpdateOnlyWhereOneMayBeOvertaken) {
  for (const bool preemptive : {false, true}) {
    Interleavings search;
    std::set<int> ends;
    search.run([&](const Chooser& chooser) {
      MemoryHost host({.chooser = chooser, .preemptive = preemptive});
      int counter = 0;
      for (int i = 0; i < 2; ++i) {
        host.backgroundQueues().global(QualityOfService::high, [&] {
          const int read = counter;
          host.mainQueue().async([] {});  // any call of a port
          counter = read + 1;
        });
      }
      host.runUntilIdle();
      ends.insert(counter);
    });
    EXPECT_EQ(ends, preemptive ? (std::set<int>{1, 2}) : (std::set<int>{2}));
  }
}

TEST(Interleavings, LetADeadlinePassBeforeAnAnswerThatIsReady) {
  for (const bool timeCompetes : {false, true}) {
    Interleavings search;
    std::set<bool> outcomes;
    search.run([&](const Chooser& chooser) {
      MemoryHost host({.chooser = chooser, .timeCompetes = timeCompetes});
      const auto condition = host.clock().newCondition();
      host.backgroundQueues().global(QualityOfService::high, [&] {
        condition->lock();
        outcomes.insert(condition->waitUntil(host.clock().steadyNow() + 60s));
        condition->unlock();
      });
      host.world().runFor(1s);
      host.backgroundQueues().global(QualityOfService::high, [&] { condition->signal(); });
      host.runFor(120s);
    });
    EXPECT_EQ(outcomes.size(), timeCompetes ? 2u : 1u);
    EXPECT_TRUE(search.complete());
  }
}

TEST(Interleavings, StopAtTheirBoundsAndAtAScenarioThatDiffers) {
  const auto manyTasks = [](const Chooser& chooser) {
    MemoryHost host({.chooser = chooser});
    for (int i = 0; i < 8; ++i) {
      host.backgroundQueues().global(QualityOfService::high, [] {});
    }
    host.runUntilIdle();
  };
  Interleavings few({.depth = 20, .runs = 50});
  EXPECT_EQ(few.run(manyTasks), 50u);
  EXPECT_FALSE(few.complete());
  Interleavings shallow({.depth = 2});
  EXPECT_EQ(shallow.run(manyTasks), 8u * 7u);
  EXPECT_TRUE(shallow.complete());

  int run = 0;
  Interleavings differing;
  EXPECT_THROW(differing.run([&run](const Chooser& chooser) {
    MemoryHost host({.chooser = chooser});
    for (int i = 0; i < 2 + run; ++i) {
      host.backgroundQueues().global(QualityOfService::high, [&host] { host.clock().sleep(1s); });
    }
    host.backgroundQueues().global(QualityOfService::high, [] {});
    ++run;
    host.runUntilIdle();
  }),
               std::logic_error);
}

}  // namespace orlix
