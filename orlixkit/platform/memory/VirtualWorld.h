#pragma once

#include <cstdint>
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
#include "orlixkit/platform/memory/VirtualAgenda.h"

namespace orlix {

/// Nothing can run any more, and what was waited for does not hold. The message lists who waits.
class StuckError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Threads and time for tests: every task has a stack of its own, but only one of them ever runs,
/// all on the thread that makes the world, and time moves only when all of them wait. So a run is
/// the same every time, has no data races, and 60 seconds take as long as the work in them.
///
/// The thread that makes the world is its main thread. Tasks run while it is inside one of the run
/// operations or waits itself, each until it ends or waits. Which of several candidates goes on is
/// a matter of turn, or decided by a chooser.
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
  void setChooser(Chooser chooser) { agenda_.setChooser(std::move(chooser)); }
  /// True: that time passes is a candidate too while others could run (a slow machine). The last.
  void setTimeCompetes(bool competes) { agenda_.setTimeCompetes(competes); }
  /// True: whoever calls a port may be overtaken there, as by a second processor.
  void setPreemptive(bool preemptive) { preemptive_ = preemptive; }
  /// Runs before the main thread waits, except at the shutdown, with what it is about to wait for.
  /// A test that sets it can fail where the main thread must not block.
  void setOnMainWait(std::function<void(const std::string& what)> onMainWait) {
    onMainWait_ = std::move(onMainWait);
  }
  /// Steps that one run may take before it counts as endless.
  void setStepLimit(std::uint64_t limit) { stepLimit_ = limit; }

  SteadyTime now() const;
  /// False in a task, although it runs on the same thread of the system.
  bool isMain() const { return std::this_thread::get_id() == mainId_ && running_ == nullptr; }
  bool isShutDown() const { return shutDown_; }

  /// A task on a thread of its own, after `delay`. Dropped after shutdown.
  void inBackground(std::string name, Task task, Duration delay = {},
                    std::shared_ptr<Lane> lane = {});
  /// A task of the main queue: these run in their order. Dropped once the queue is closed.
  void onMainQueue(Task task);
  /// Something that comes to the main thread from outside (a user, a page), not bound to the order
  /// of the main queue. Dropped once that is closed.
  void asMainEvent(Task task, Duration delay = {});

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

  /// A task waits for time to pass, by the clock's `sleep`.
  bool someoneSleeps() const;

  /// Tasks that run or wait, and those whose stack is kept for the next one.
  std::size_t threadCount() const { return workers_.size(); }

 private:
  struct Worker;
  using Candidate = VirtualAgenda::Candidate;
  using Kind = VirtualAgenda::Kind;
  enum class Step { nothing, onMain, inBackground };
  using Lock = std::unique_lock<std::mutex>;

  VirtualAgenda::Waiter& self();
  std::optional<Candidate> choose(bool mainIsFree, SteadyTime limit);
  Worker& workerOf(const Candidate& chosen);
  Worker& begin(VirtualAgenda::Item item);
  void work(Worker& worker);
  void resume(Worker& worker, Lock& lock);
  void untilChosenAgain(Lock& lock);
  bool giveTurn(Lock& lock);
  Step step(SteadyTime limit);
  void beginRun();
  [[noreturn]] void throwStuck(const std::string& reason);

  mutable std::mutex mutex_;
  const std::thread::id mainId_ = std::this_thread::get_id();
  VirtualAgenda agenda_;
  VirtualAgenda::Waiter main_;
  std::vector<std::unique_ptr<Worker>> workers_;
  Worker* running_ = nullptr;  ///< none while the main thread runs
  std::function<void(const std::string&)> onMainWait_;
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
