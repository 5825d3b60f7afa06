#include "orlixkit/platform/memory/VirtualWorld.h"

#include <algorithm>
#include <condition_variable>
#include <utility>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/MainQueue.h"

namespace orlix {

/// One thread of the world, with the signal that it has the baton.
struct VirtualWorld::Actor : VirtualAgenda::Waiter {
  std::condition_variable turn;
};

/// A thread that runs tasks one after the other; idle ones are taken again.
struct VirtualWorld::Worker : Actor {
  VirtualAgenda::Item item;
  bool idle = true;
  std::thread thread;
};

namespace {

thread_local void* currentWorker = nullptr;

}  // namespace

VirtualWorld::VirtualWorld() : main_(std::make_unique<Actor>()), holder_(main_.get()) {
  main_->name = "the main thread";
  agenda_.enroll(*main_);
}

VirtualWorld::~VirtualWorld() { shutDown(); }

SteadyTime VirtualWorld::now() const {
  const Lock lock(mutex_);
  return agenda_.now();
}

VirtualWorld::Actor& VirtualWorld::self() {
  if (isMain()) {
    return *main_;
  }
  const auto isMe = [](const auto& worker) { return worker.get() == currentWorker; };
  const auto found = std::find_if(workers_.begin(), workers_.end(), isMe);
  if (found == workers_.end()) {
    throw std::logic_error("VirtualWorld: only its own tasks and its main thread can wait in it");
  }
  return **found;
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

// The baton.

std::optional<VirtualWorld::Candidate> VirtualWorld::choose(bool mainIsFree, SteadyTime limit) {
  if (++steps_ > stepLimit_) {
    throwStuck("the run does not come to an end");
  }
  return agenda_.choose(mainIsFree, limit);
}

/// The thread that is to go on, or one for the task that is to begin.
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
  worker.name = item.name;
  worker.item = std::move(item);
  if (worker.item.lane) {
    worker.item.lane->busy = true;
  }
  if (!found) {
    agenda_.enroll(worker);
    worker.thread = std::thread([this, &worker] { workerLoop(worker); });
  }
  return worker;
}

void VirtualWorld::workerLoop(Worker& worker) {
  currentWorker = &worker;
  Lock lock(mutex_);
  for (;;) {
    worker.turn.wait(lock, [&] { return holder_ == &worker || quit_; });
    if (quit_) {
      return;
    }
    Task task = std::exchange(worker.item.task, {});
    lock.unlock();
    runLoggedInBackground(task);
    task = {};
    lock.lock();
    worker.idle = true;
    if (const std::shared_ptr<Lane> lane = std::exchange(worker.item.lane, nullptr)) {
      lane->busy = false;
    }
    holder_ = main_.get();
    main_->turn.notify_one();
  }
}

/// On the main thread: lets the worker run until it gives the baton back.
void VirtualWorld::resume(Worker& worker, Lock& lock) {
  worker.ready = false;
  holder_ = &worker;
  worker.turn.notify_one();
  main_->turn.wait(lock, [&] { return holder_ == main_.get(); });
}

/// Lets others run until it is this thread's turn again. While the main thread waits like this, its
/// queue stands still and only tasks go on.
void VirtualWorld::untilChosenAgain(Actor& me, Lock& lock) {
  if (&me != main_.get()) {
    holder_ = main_.get();
    main_->turn.notify_one();
    me.turn.wait(lock, [&] { return holder_ == &me; });
    return;
  }
  try {
    while (giveTurn(lock)) {
    }
  } catch (...) {
    main_->waiting = false;
    main_->ready = false;
    throw;
  }
}

/// False when it is the main thread's own turn.
bool VirtualWorld::giveTurn(Lock& lock) {
  const std::optional<Candidate> chosen = choose(false, kNever);
  if (!chosen) {
    throwStuck("nothing can run");
  }
  if (chosen->waiter == main_.get()) {
    main_->ready = false;
    return false;
  }
  resume(workerOf(*chosen), lock);
  return true;
}

Wake VirtualWorld::wait(std::string what, const void* channel, SteadyTime deadline,
                        bool interruptible) {
  Lock lock(mutex_);
  Actor& me = self();
  if (shutDown_ && interruptible) {
    return Wake::shutDown;
  }
  if (&me == main_.get() && onMainWait_ && !shutDown_) {
    onMainWait_(what);
  }
  agenda_.beginWait(me, std::move(what), channel, deadline, interruptible);
  untilChosenAgain(me, lock);
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
  Actor& me = self();
  agenda_.makeReady(me, Wake::signalled);
  untilChosenAgain(me, lock);
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
    // Thrown again: the task may have taken the first one for a failure of a request.
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

// The end.

void VirtualWorld::closeMainQueue() {
  // Released after the lock: what dies with a task may call the world.
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
  for (const auto& worker : workers_) {
    worker->turn.notify_one();
  }
  lock.unlock();
  for (const auto& worker : workers_) {
    worker->thread.join();
  }
  agenda_.forgetWaiters();
  agenda_.enroll(*main_);
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
