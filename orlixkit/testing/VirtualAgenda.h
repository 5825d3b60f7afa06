// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Clock.h"

namespace orlix {

/// Deadline of a wait without a deadline.
inline constexpr SteadyTime kNever = SteadyTime::max();

/// `start` + `span`, or kNever on overflow.
SteadyTime laterBy(SteadyTime start, Duration span);

/// Returns the index of the candidate (of 2 or more) to run next. Candidates are in the order in
/// which they became ready, so that 0 is always fair.
using Chooser = std::function<std::size_t(std::size_t candidates)>;

/// How a wait ended.
enum class Wake { signalled, timedOut, shutDown };

/// Tasks of the same lane run one at a time, in order.
struct Lane {
  bool busy = false;
};

/// Schedule of a virtual world: tasks that have not begun, threads that wait or are ready, and the
/// time. Not synchronised; the owner guards it.
class VirtualAgenda {
 public:
  struct Item {
    SteadyTime at;
    std::uint64_t order = 0;  ///< position in the queue; order of creation until it is ready
    bool ready = false;
    std::string name;
    Task task;
    std::shared_ptr<Lane> lane;  ///< null for most
  };
  /// A suspended thread and what it waits for.
  struct Waiter {
    std::string name;
    std::string doing;  ///< for error messages: "sleeps"
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

  /// The candidate to run next; advances the time, up to `limit`, when none is ready. Absent when
  /// none will be. `mainIsFree`: tasks of the main thread may be chosen.
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
