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

class VirtualWorldTest : public testing::Test {
 protected:
  void inBackground(Task task) {
    host.backgroundQueues().global(QualityOfService::high, std::move(task));
  }
  /// Writes down what happened, with the second at which it did.
  void note(const std::string& what) {
    const auto at = std::chrono::floor<std::chrono::seconds>(host.clock().steadyNow() - start);
    ran.push_back(std::to_string(at.count()) + " " + what);
  }

  MemoryHost host;
  const SteadyTime start = host.clock().steadyNow();
  const std::unique_ptr<Condition> condition = host.clock().newCondition();
  std::vector<std::string> ran;
};

TEST_F(VirtualWorldTest, SaysWhoWaitsWhenNothingCanEverRunAndNoTaskCanHideIt) {
  inBackground([&] {
    condition->lock();
    condition->waitUntil(kNever);
    condition->unlock();
  });
  EXPECT_EQ(
      messageOf([&] { host.runUntil([] { return false; }); }),
      "VirtualWorld: what is waited for does not come; waiting: high task waits for a signal");
  const auto own = host.clock().newCondition();
  own->lock();
  EXPECT_EQ(messageOf([&] { own->lock(); }),
            "VirtualWorld: nothing can run; waiting: high task waits for a signal, "
            "the main thread waits for a lock");
  own->unlock();
  host.mainQueue().async([&] {
    try {
      host.mainQueue().runUntil([] { return false; });
    } catch (const std::exception&) {
      // As a request does, which turns every failure into one of its own.
    }
  });
  EXPECT_THROW(host.runUntilIdle(), StuckError);
  host.world().setStepLimit(1000);
  std::function<void()> again = [&] { host.mainQueue().async(again); };
  host.mainQueue().async(again);
  EXPECT_THROW(host.runUntilIdle(), StuckError) << "no time passes";
  std::thread([&] { EXPECT_THROW(host.clock().sleep(1s), std::logic_error); }).join();
  host.shutdown();  // while the condition that the task waits on still stands
}

TEST_F(VirtualWorldTest, WhileTheMainThreadWaitsForALockItsQueueStandsStillAndTasksGoOn) {
  host.mainQueue().async([&] { note("main task"); });
  for (const char* name : {"first", "second"}) {
    inBackground([&, name] {
      condition->lock();
      host.clock().sleep(3s);
      note(name);
      condition->unlock();
    });
  }
  host.world().inBackground(
      "signal", [&] { condition->signal(); }, 10s);
  host.world().inBackground(
      "other", [&] { note("other"); }, 1s);
  EXPECT_THROW(condition->unlock(), std::logic_error);
  EXPECT_THROW(condition->waitUntil(kNever), std::logic_error);
  host.clock().setNow(host.clock().now() + 24h);  // which moves no deadline
  condition->lock();
  EXPECT_TRUE(condition->waitUntil(start + 60s));
  EXPECT_FALSE(condition->waitUntil(start + 60s));
  condition->unlock();
  EXPECT_EQ(ran, (std::vector<std::string>{"1 other", "3 first", "6 second"}));
  host.runUntilIdle();
  EXPECT_EQ(ran.back(), "60 main task");
}

TEST(Interleavings, TryEveryOrderOnceUpToTheirBounds) {
  std::set<std::string> orders;
  std::size_t tasks = 4;
  const auto scenario = [&](const Chooser& chooser) {
    MemoryHost host({.chooser = chooser});
    std::string order;
    for (std::size_t i = 0; i < tasks; ++i) {
      host.backgroundQueues().global(QualityOfService::high,
                                     [&order, i] { order += std::to_string(i); });
    }
    host.runUntilIdle();
    orders.insert(order);
  };
  Interleavings search;
  EXPECT_EQ(search.run(scenario), 24u);
  EXPECT_EQ(orders.size(), 24u);
  EXPECT_TRUE(search.complete());
  Interleavings few({.depth = 20, .runs = 10});
  EXPECT_EQ(few.run(scenario), 10u);
  EXPECT_FALSE(few.complete());
  EXPECT_EQ(Interleavings({.depth = 2}).run(scenario), 4u * 3u);
  const auto differing = [&](const Chooser& chooser) {
    scenario(chooser);
    --tasks;
  };
  EXPECT_THROW(Interleavings().run(differing), std::logic_error);
}

TEST(Interleavings, FindALostUpdateWhereOneMayBeOvertakenAndADeadlineThatPassesBeforeAnAnswer) {
  for (const bool unkind : {false, true}) {
    std::set<int> ends;
    Interleavings().run([&](const Chooser& chooser) {
      MemoryHost host({.chooser = chooser, .preemptive = unkind});
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
    EXPECT_EQ(ends, unkind ? (std::set<int>{1, 2}) : (std::set<int>{2}));

    std::set<bool> answered;
    Interleavings().run([&](const Chooser& chooser) {
      MemoryHost host({.chooser = chooser, .timeCompetes = unkind});
      const auto condition = host.clock().newCondition();
      host.backgroundQueues().global(QualityOfService::high, [&] {
        condition->lock();
        answered.insert(condition->waitUntil(host.clock().steadyNow() + 60s));
        condition->unlock();
      });
      host.world().runFor(1s);
      host.backgroundQueues().global(QualityOfService::high, [&] { condition->signal(); });
      host.runFor(120s);
    });
    EXPECT_EQ(answered, unkind ? (std::set<bool>{false, true}) : (std::set<bool>{true}));
  }
}

}  // namespace

}  // namespace orlix
