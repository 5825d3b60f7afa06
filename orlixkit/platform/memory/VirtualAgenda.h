#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/Clock.h"

namespace orlix {

/// A point in time that never comes: a wait without a deadline.
inline constexpr SteadyTime kNever = SteadyTime::max();

/// `start` + `span`, or kNever where that lies beyond what the clock can tell.
SteadyTime laterBy(SteadyTime start, Duration span);

/// Decides which of `candidates` (2 or more) goes on next, by its index. The candidates stand in
/// the order in which they became ready, so that 0 is always fair.
using Chooser = std::function<std::size_t(std::size_t candidates)>;

/// How a wait ended.
enum class Wake { signalled, timedOut, shutDown };

/// Tasks with the same lane run one at a time, in their order.
struct Lane {
  bool busy = false;
};

/// What is to happen in a virtual world, and when: tasks that have not begun, threads that wait or
/// could go on, and the time. Knows no threads and no locks; whoever holds it guards it.
class VirtualAgenda {
 public:
  struct Item {
    SteadyTime at;
    std::uint64_t order = 0;  ///< its place in line; while it is not ready, when it was set up
    bool ready = false;
    std::string name;
    Task task;
    std::shared_ptr<Lane> lane;  ///< none for most
  };
  /// A thread, and what it waits for while it does not run.
  struct Waiter {
    std::string name;
    std::string doing;  ///< for the reader of an error: "sleeps"
    const void* channel = nullptr;
    SteadyTime deadline = kNever;
    bool interruptible = true;
    bool waiting = false;
    bool ready = false;
    std::uint64_t order = 0;
    Wake result = Wake::signalled;
  };
  enum class Kind { waiter, mainQueue, mainEvent, task };
  struct Candidate {
    std::uint64_t order = 0;
    Kind kind = Kind::task;
    std::size_t index = 0;     ///< among the tasks or the main events
    Waiter* waiter = nullptr;  ///< for a waiter only
  };

  SteadyTime now() const { return now_; }
  void setChooser(Chooser chooser) { chooser_ = std::move(chooser); }
  void setTimeCompetes(bool competes) { timeCompetes_ = competes; }

  void addTask(std::string name, Task task, Duration delay, std::shared_ptr<Lane> lane);
  void addMainTask(Task task);
  void addMainEvent(Task task, Duration delay);
  Item takeTask(std::size_t index);
  /// For a candidate of the kind mainQueue or mainEvent.
  Item takeMain(const Candidate& candidate);
  std::vector<Item> dropTasks();
  std::vector<Item> dropMain();

  /// Not owned; must stay until `forgetWaiters`.
  void enroll(Waiter& waiter) { waiters_.push_back(&waiter); }
  void forgetWaiters() { waiters_.clear(); }
  void beginWait(Waiter& waiter, std::string what, const void* channel, SteadyTime deadline,
                 bool interruptible);
  void makeReady(Waiter& waiter, Wake how);
  void wake(const void* channel);
  void wakeForShutdown();

  /// Who goes on next; time passes, up to `limit`, when nobody is ready. None when nobody will be.
  /// `mainIsFree`: tasks of the main thread may be chosen.
  std::optional<Candidate> choose(bool mainIsFree, SteadyTime limit);
  void moveTimeTo(SteadyTime time);

  std::string whoWaits() const;

 private:
  Item item(std::string name, Task task, Duration delay);
  std::vector<Candidate> candidates(bool mainIsFree);
  void addTasksThatCanBegin(std::vector<Candidate>& found) const;
  std::optional<SteadyTime> nextTimer() const;
  std::vector<Waiter*> waitersOf(const std::function<bool(const Waiter&)>& which) const;

  SteadyTime now_{std::chrono::hours(1)};
  std::uint64_t order_ = 0;
  std::vector<Waiter*> waiters_;
  std::deque<Item> mainQueue_;
  std::vector<Item> mainEvents_;
  std::vector<Item> tasks_;
  Chooser chooser_;
  bool timeCompetes_ = false;
};

}  // namespace orlix
