// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/VirtualWorld.h"

#include <algorithm>
#include <utility>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/testing/Fiber.h"

namespace orlix {

/// Runs tasks one after the other; idle ones are reused.
struct VirtualWorld::Worker : VirtualAgenda::Waiter {
  VirtualAgenda::Item item;
  bool idle = true;
  bool begun = false;
  Fiber fiber;
};

VirtualWorld::VirtualWorld() {
  main_.name = "the main thread";
  agenda_.enroll(main_);
}

VirtualWorld::~VirtualWorld() { shutDown(); }

SteadyTime VirtualWorld::now() const {
  const Lock lock(mutex_);
  return agenda_.now();
}

VirtualAgenda::Waiter& VirtualWorld::self() {
  if (std::this_thread::get_id() != mainId_) {
    throw std::logic_error("VirtualWorld: only its own tasks and its main thread can wait in it");
  }
  return running_ == nullptr ? main_ : *running_;
}

void VirtualWorld::inBackground(std::string name, Task task, Duration delay,
                                std::shared_ptr<Lane> lane) {
  const Lock lock(mutex_);
  if (!shutDown_) {
    agenda_.addTask(std::move(name), std::move(task), delay, std::move(lane));
  }
}

void VirtualWorld::onMainQueue(Task task) {
  const Lock lock(mutex_);
  if (!mainQueueClosed_) {
    agenda_.addMainTask(std::move(task));
  }
}

void VirtualWorld::asMainEvent(Task task, Duration delay) {
  const Lock lock(mutex_);
  if (!mainQueueClosed_) {
    agenda_.addMainEvent(std::move(task), delay);
  }
}

// Turns.

std::optional<VirtualWorld::Candidate> VirtualWorld::choose(bool mainIsFree, SteadyTime limit) {
  if (++steps_ > stepLimit_) {
    throwStuck("the run does not come to an end");
  }
  return agenda_.choose(mainIsFree, limit);
}

/// The worker to resume, or one for the task to start.
VirtualWorld::Worker& VirtualWorld::workerOf(const Candidate& chosen) {
  return chosen.kind == Kind::task ? begin(agenda_.takeTask(chosen.index))
                                   : static_cast<Worker&>(*chosen.waiter);
}

VirtualWorld::Worker& VirtualWorld::begin(VirtualAgenda::Item item) {
  const auto isIdle = [](const auto& worker) { return worker->idle; };
  const auto idle = std::find_if(workers_.begin(), workers_.end(), isIdle);
  const bool found = idle != workers_.end();
  Worker& worker = found ? **idle : *workers_.emplace_back(std::make_unique<Worker>());
  worker.idle = false;
  worker.begun = false;
  worker.name = item.name;
  worker.item = std::move(item);
  if (worker.item.lane) {
    worker.item.lane->busy = true;
  }
  if (!found) {
    agenda_.enroll(worker);
  }
  return worker;
}

void VirtualWorld::work(Worker& worker) {
  runLoggedInBackground(std::exchange(worker.item.task, {}));
  const Lock lock(mutex_);
  worker.idle = true;
  if (const std::shared_ptr<Lane> lane = std::exchange(worker.item.lane, nullptr)) {
    lane->busy = false;
  }
}

/// On the main thread: runs the worker until it waits or has finished.
void VirtualWorld::resume(Worker& worker, Lock& lock) {
  worker.ready = false;
  lock.unlock();
  running_ = &worker;
  if (std::exchange(worker.begun, true)) {
    worker.fiber.resume();
  } else {
    worker.fiber.start([this, &worker] { work(worker); });
  }
  running_ = nullptr;
  lock.lock();
}

/// Runs others until it is the caller's turn again. While the main thread waits here, its queue is
/// blocked and only background tasks run.
void VirtualWorld::untilChosenAgain(Lock& lock) {
  if (running_ != nullptr) {
    lock.unlock();
    running_->fiber.pause();
    lock.lock();
    return;
  }
  try {
    while (giveTurn(lock)) {
    }
  } catch (...) {
    main_.waiting = false;
    main_.ready = false;
    throw;
  }
}

/// False when it is the main thread's own turn.
bool VirtualWorld::giveTurn(Lock& lock) {
  const std::optional<Candidate> chosen = choose(false, kNever);
  if (!chosen) {
    throwStuck("nothing can run");
  }
  if (chosen->waiter == &main_) {
    main_.ready = false;
    return false;
  }
  resume(workerOf(*chosen), lock);
  return true;
}

Wake VirtualWorld::wait(std::string what, const void* channel, SteadyTime deadline,
                        bool interruptible) {
  Lock lock(mutex_);
  VirtualAgenda::Waiter& me = self();
  if (shutDown_ && interruptible) {
    return Wake::shutDown;
  }
  if (&me == &main_ && onMainWait_ && !shutDown_) {
    onMainWait_(what);
  }
  agenda_.beginWait(me, std::move(what), channel, deadline, interruptible);
  untilChosenAgain(lock);
  return me.result;
}

void VirtualWorld::wake(const void* channel) {
  const Lock lock(mutex_);
  agenda_.wake(channel);
}

void VirtualWorld::mayBeOvertaken() {
  if (!preemptive_) {
    return;
  }
  Lock lock(mutex_);
  agenda_.makeReady(self(), Wake::signalled);
  untilChosenAgain(lock);
}

// Runs.

VirtualWorld::Step VirtualWorld::step(SteadyTime limit) {
  Lock lock(mutex_);
  const std::optional<Candidate> chosen = choose(true, limit);
  if (!chosen) {
    return Step::nothing;
  }
  if (chosen->kind == Kind::waiter || chosen->kind == Kind::task) {
    resume(workerOf(*chosen), lock);
    return Step::inBackground;
  }
  const VirtualAgenda::Item item = agenda_.takeMain(*chosen);
  lock.unlock();
  ++mainTasks_;
  runLogged(item.task);
  --mainTasks_;
  if (!stuck_.empty()) {
    // Throw it again: the task may have caught the first one as a failure of a request.
    throw StuckError(mainTasks_ == 0 ? std::exchange(stuck_, {}) : stuck_);
  }
  return Step::onMain;
}

void VirtualWorld::beginRun() {
  if (!isMain()) {
    throw std::logic_error("VirtualWorld: only the main thread can run it");
  }
  if (mainTasks_ == 0) {
    steps_ = 0;
  }
}

void VirtualWorld::runUntil(const std::function<bool()>& done, Duration limit) {
  beginRun();
  const SteadyTime last = laterBy(now(), limit);
  while (!done()) {
    if (step(last) == Step::nothing) {
      throwStuck("what is waited for does not come");
    }
  }
}

void VirtualWorld::runUntilIdle() {
  beginRun();
  while (step(now()) != Step::nothing) {
  }
}

void VirtualWorld::runFor(Duration span) {
  beginRun();
  const SteadyTime last = laterBy(now(), span);
  while (step(last) != Step::nothing) {
  }
  const Lock lock(mutex_);
  agenda_.moveTimeTo(last);
}

void VirtualWorld::runMainQueueUntil(const std::function<bool()>& done) {
  beginRun();
  while (!mainQueueClosed_ && !done()) {
    Step taken = Step::inBackground;
    while (!mainQueueClosed_ && taken == Step::inBackground) {
      taken = step(kNever);
    }
    if (taken == Step::nothing) {
      throwStuck("the main queue waits for what does not come");
    }
  }
}

bool VirtualWorld::someoneSleeps() const {
  return std::any_of(workers_.begin(), workers_.end(), [](const auto& worker) {
    return !worker->idle && worker->waiting && worker->doing == "sleeps";
  });
}

// The end.

void VirtualWorld::closeMainQueue() {
  // Released after the lock: destructors that run with a task may call the world.
  std::vector<VirtualAgenda::Item> dropped;
  const Lock lock(mutex_);
  mainQueueClosed_ = true;
  dropped = agenda_.dropMain();
}

void VirtualWorld::shutDown() {
  if (quit_) {
    return;
  }
  closeMainQueue();
  beginRun();
  std::vector<VirtualAgenda::Item> dropped;
  Lock lock(mutex_);
  shutDown_ = true;
  dropped = agenda_.dropTasks();
  agenda_.wakeForShutdown();
  const auto isBusy = [](const auto& worker) { return !worker->idle; };
  while (std::any_of(workers_.begin(), workers_.end(), isBusy)) {
    const std::optional<Candidate> chosen = choose(false, kNever);
    if (!chosen) {
      throwStuck("the shutdown waits for a task that does not end");
    }
    resume(workerOf(*chosen), lock);
  }
  quit_ = true;
  agenda_.forgetWaiters();
  agenda_.enroll(main_);
  workers_.clear();
}

void VirtualWorld::throwStuck(const std::string& reason) {
  const std::string message = "VirtualWorld: " + reason + "; " + agenda_.whoWaits();
  if (mainTasks_ > 0) {
    stuck_ = message;
  }
  throw StuckError(message);
}

}  // namespace orlix
