// SPDX-License-Identifier: Apache-2.0

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

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Clock.h"
#include "orlixkit/testing/VirtualAgenda.h"

namespace orlix {

/// Nothing can run any more, and the awaited condition does not hold. The message lists the
/// waiters.
class StuckError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Threads and time for tests: every task has its own stack, only one runs at a time, all on the
/// thread that makes the world, and time advances only when all of them wait. A run is therefore
/// deterministic and free of data races, and 60 seconds take only as long as the work in them.
///
/// The thread that makes the world is its main thread. Tasks run while it is inside a run operation
/// or waits, each until it ends or waits. The next of several candidates is the first that became
/// ready, or the one that a chooser selects.
///
/// Thread: the run operations and `shutDown` on the main thread. `isMain`, `inBackground` and
/// `onMainQueue` from any thread. Waiting operations: on the main thread or in a task of this
/// world.
class VirtualWorld {
 public:
  VirtualWorld();
  ~VirtualWorld();
  VirtualWorld(const VirtualWorld&) = delete;
  VirtualWorld& operator=(const VirtualWorld&) = delete;

  /// Empty (the default): first come, first served.
  void setChooser(Chooser chooser) { agenda_.setChooser(std::move(chooser)); }
  /// True: advancing the time is a candidate, the last one, while others are ready (a slow
  /// machine).
  void setTimeCompetes(bool competes) { agenda_.setTimeCompetes(competes); }
  /// True: another task may run at each call of a port, as on a second processor.
  void setPreemptive(bool preemptive) { preemptive_ = preemptive; }
  /// Called before the main thread waits, except at shutdown, with what it waits for, so that a
  /// test can fail where the main thread must not block.
  void setOnMainWait(std::function<void(const std::string& what)> onMainWait) {
    onMainWait_ = std::move(onMainWait);
  }
  /// Maximum number of steps of one run; more count as endless.
  void setStepLimit(std::uint64_t limit) { stepLimit_ = limit; }

  SteadyTime now() const;
  /// False in a task, although it runs on the same system thread.
  bool isMain() const { return std::this_thread::get_id() == mainId_ && running_ == nullptr; }
  bool isShutDown() const { return shutDown_; }

  /// Adds a background task, to start after `delay`. Dropped after shutdown.
  void inBackground(std::string name, Task task, Duration delay = {},
                    std::shared_ptr<Lane> lane = {});
  /// Adds a task of the main queue; these run in order. Dropped once the queue is closed.
  void onMainQueue(Task task);
  /// Adds an external event for the main thread (a user, a page), not bound to the order of the
  /// main queue. Dropped once the queue is closed.
  void asMainEvent(Task task, Duration delay = {});

  /// Waits for `wake` of the same channel. `what` appears in the message of a StuckError. A wait
  /// that is not `interruptible` is not ended by the shutdown.
  Wake wait(std::string what, const void* channel, SteadyTime deadline, bool interruptible = true);
  void wake(const void* channel);
  /// A point at which another task may run, when the world is preemptive.
  void mayBeOvertaken();

  /// Runs until `done` holds; evaluated after every step. Throws StuckError when nothing can run
  /// any more, or after `limit` of virtual time.
  void runUntil(const std::function<bool()>& done, Duration limit = std::chrono::hours(1));
  /// Runs everything that can run without advancing the time.
  void runUntilIdle();
  /// Runs everything that happens within this span.
  void runFor(Duration span);
  /// For the main queue: evaluates `done` after main-thread tasks only, as a real queue does.
  void runMainQueueUntil(const std::function<bool()>& done);

  void closeMainQueue();
  /// Wakes every waiter, drops tasks that have not begun, and returns when no task is running. May
  /// be called again.
  void shutDown();

  /// Whether a task waits in the clock's `sleep`.
  bool someoneSleeps() const;

  /// Number of tasks that run or wait, plus stacks kept for reuse.
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
  Worker* running_ = nullptr;  ///< null while the main thread runs
  std::function<void(const std::string&)> onMainWait_;
  bool preemptive_ = false;
  std::uint64_t stepLimit_ = 2'000'000;
  std::uint64_t steps_ = 0;
  int mainTasks_ = 0;  ///< nested on the main thread's stack
  bool mainQueueClosed_ = false;
  bool shutDown_ = false;
  bool quit_ = false;
  std::string stuck_;
};

}  // namespace orlix
