#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/Clock.h"

namespace orlix {

/// A point in time that never comes: a wait without a deadline.
inline constexpr SteadyTime kNever = SteadyTime::max();

/// `start` + `span`, or kNever where that lies beyond what the clock can tell.
SteadyTime laterBy(SteadyTime start, Duration span);

/// Nothing can run any more, and what was waited for does not hold. The message lists who waits.
class StuckError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Decides which of `candidates` (2 or more) goes on next, by its index. The candidates stand in
/// the order in which they became ready, so that 0 is always fair.
using Chooser = std::function<std::size_t(std::size_t candidates)>;

/// Threads and time for tests: every task has a thread of its own, but only one of them, the holder
/// of the baton, ever runs, and time moves only when all of them wait. So a run is the same every
/// time, has no data races, and 60 seconds take as long as the work in them.
///
/// The thread that makes the world is its main thread. It hands the baton out while it is inside
/// one of the run operations or waits itself; a task gives the baton back when it ends or waits.
/// Which of several candidates goes on is a matter of turn, or of a chooser's word.
///
/// Thread: the run operations and `shutDown` on the main thread. `isMain`, `inBackground` and
/// `onMainQueue` from any thread. What waits: on the main thread or from a task of this world.
class VirtualWorld {
 public:
  VirtualWorld();
  ~VirtualWorld();
  VirtualWorld(const VirtualWorld&) = delete;
  VirtualWorld& operator=(const VirtualWorld&) = delete;

  /// None (the default): first come, first served.
  void setChooser(Chooser chooser) { chooser_ = std::move(chooser); }
  /// True: that time passes is a candidate too while others could run (a slow machine). The last.
  void setTimeCompetes(bool competes) { timeCompetes_ = competes; }
  /// True: whoever calls a port may be overtaken there, as by a second processor.
  void setPreemptive(bool preemptive) { preemptive_ = preemptive; }
  /// Steps that one run may take before it counts as endless.
  void setStepLimit(std::uint64_t limit) { stepLimit_ = limit; }

  SteadyTime now() const;
  bool isMain() const { return std::this_thread::get_id() == mainId_; }
  bool isShutDown() const { return shutDown_; }

  /// A task on a thread of its own, after `delay`. Dropped after shutdown.
  void inBackground(std::string name, Task task, Duration delay = {});
  /// Tasks with the same lane run one at a time, in their order.
  struct Lane {
    bool busy = false;
  };
  void inLane(const std::shared_ptr<Lane>& lane, std::string name, Task task);
  /// A task of the main queue: these run in their order. Dropped once the queue is closed.
  void onMainQueue(Task task);
  /// Something that comes to the main thread from outside (a user, a page), not bound to the order
  /// of the main queue. Dropped once that is closed.
  void asMainEvent(Task task, Duration delay = {});

  enum class Wake { signalled, timedOut, shutDown };
  /// Waits for `wake` of the same channel. `what` is for the reader of a StuckError. A wait that is
  /// not `interruptible` outlasts the shutdown.
  Wake wait(std::string what, const void* channel, SteadyTime deadline, bool interruptible = true);
  void wake(const void* channel);
  /// A place where another may overtake the caller, when the world is preemptive.
  void mayBeOvertaken();

  /// Runs until `done` holds, asked after every step. Throws StuckError when it never will, or not
  /// within `limit` of virtual time.
  void runUntil(const std::function<bool()>& done, Duration limit = std::chrono::hours(1));
  /// Runs what can run without time passing.
  void runUntilIdle();
  /// Runs all that happens within this span.
  void runFor(Duration span);
  /// The main queue's own: `done` is asked after main-thread tasks only, as a real queue does.
  void runMainQueueUntil(const std::function<bool()>& done);

  void closeMainQueue();
  /// Wakes every waiter, drops what has not begun, and returns when no task runs and no thread is
  /// left. May be called again.
  void shutDown();

  /// Threads that are alive, the main one not counted.
  std::size_t threadCount() const { return workers_.size(); }

 private:
  struct Actor;
  struct Worker;
  struct Pending {
    SteadyTime at;
    std::uint64_t order = 0;  ///< since when it could run; of its registration before that
    bool ready = false;
    std::string name;
    Task task;
    std::shared_ptr<Lane> lane;  ///< none for most
  };
  enum class Kind { mainItself, mainQueue, mainEvent, worker, task };
  struct Candidate {
    std::uint64_t order = 0;
    Kind kind = Kind::task;
    std::size_t index = 0;
  };
  enum class Step { nothing, onMain, inBackground };
  using Lock = std::unique_lock<std::mutex>;

  Actor& self();
  Pending pending(std::string name, Task task, Duration delay);
  std::vector<Candidate> candidates(bool mainIsFree) const;
  void addTasksThatCanBegin(std::vector<Candidate>& found) const;
  std::optional<SteadyTime> nextTimer() const;
  std::vector<Actor*> waiters(const std::function<bool(const Actor&)>& which);
  void moveTimeTo(SteadyTime time);
  std::optional<Candidate> choose(bool mainIsFree, SteadyTime limit);
  void resume(Worker& worker, Lock& lock);
  Worker& start(std::size_t task);
  void workerLoop(Worker& worker);
  void handBack(Actor& worker, Lock& lock);
  void giveTurnsUntilMainIsChosen(Lock& lock);
  bool giveTurn(Lock& lock);
  Step step(SteadyTime limit);
  void beginRun();
  [[noreturn]] void throwStuck(const std::string& reason);
  std::string whoWaits() const;

  mutable std::mutex mutex_;
  const std::thread::id mainId_ = std::this_thread::get_id();
  std::unique_ptr<Actor> main_;
  std::vector<std::unique_ptr<Worker>> workers_;
  Actor* holder_;
  SteadyTime now_{std::chrono::hours(1)};
  std::uint64_t order_ = 0;
  std::deque<Pending> mainQueue_;
  std::vector<Pending> mainEvents_;
  std::vector<Pending> tasks_;
  Chooser chooser_;
  bool timeCompetes_ = false;
  bool preemptive_ = false;
  std::uint64_t stepLimit_ = 2'000'000;
  std::uint64_t steps_ = 0;
  int mainTasks_ = 0;  ///< how many stand on the main thread's stack
  bool mainQueueClosed_ = false;
  bool shutDown_ = false;
  bool quit_ = false;
  std::string stuck_;
};

}  // namespace orlix
