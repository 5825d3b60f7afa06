#include "orlixkit/platform/memory/VirtualWorld.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "orlixkit/platform/MainQueue.h"

namespace orlix {

/// One thread of the world and, while it does not run, why.
struct VirtualWorld::Actor {
  std::string doing;
  const void* channel = nullptr;
  SteadyTime deadline = kNever;
  bool interruptible = true;
  bool waiting = false;
  bool ready = false;
  std::uint64_t order = 0;
  Wake result = Wake::signalled;
  std::condition_variable turn;

  void makeReady(Wake how, std::uint64_t place) {
    waiting = false;
    ready = true;
    result = how;
    order = place;
  }
};

/// A thread that runs tasks one after the other; idle ones are taken again.
struct VirtualWorld::Worker : Actor {
  std::string name;
  Task task;
  std::shared_ptr<Lane> lane;
  bool idle = true;
  std::thread thread;
};

namespace {

thread_local void* currentWorker = nullptr;

}  // namespace

SteadyTime laterBy(SteadyTime start, Duration span) {
  return span > kNever - start ? kNever : start + span;
}

VirtualWorld::VirtualWorld() : main_(std::make_unique<Actor>()), holder_(main_.get()) {}

VirtualWorld::~VirtualWorld() { shutDown(); }

SteadyTime VirtualWorld::now() const {
  const Lock lock(mutex_);
  return now_;
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

// What is to run.

VirtualWorld::Pending VirtualWorld::pending(std::string name, Task task, Duration delay) {
  const SteadyTime at = laterBy(now_, delay);
  return {at, ++order_, at <= now_, std::move(name), std::move(task), nullptr};
}

void VirtualWorld::inBackground(std::string name, Task task, Duration delay) {
  const Lock lock(mutex_);
  if (!shutDown_) {
    tasks_.push_back(pending(std::move(name), std::move(task), delay));
  }
}

void VirtualWorld::inLane(const std::shared_ptr<Lane>& lane, std::string name, Task task) {
  const Lock lock(mutex_);
  if (!shutDown_) {
    tasks_.push_back(pending(std::move(name), std::move(task), {}));
    tasks_.back().lane = lane;
  }
}

void VirtualWorld::onMainQueue(Task task) {
  const Lock lock(mutex_);
  if (!mainQueueClosed_) {
    mainQueue_.push_back(pending("main queue", std::move(task), {}));
  }
}

void VirtualWorld::asMainEvent(Task task, Duration delay) {
  const Lock lock(mutex_);
  if (!mainQueueClosed_) {
    mainEvents_.push_back(pending("main event", std::move(task), delay));
  }
}

std::vector<VirtualWorld::Candidate> VirtualWorld::candidates(bool mainIsFree) const {
  std::vector<Candidate> found;
  if (main_->ready) {
    found.push_back({main_->order, Kind::mainItself, 0});
  }
  if (mainIsFree && !mainQueue_.empty()) {
    found.push_back({mainQueue_.front().order, Kind::mainQueue, 0});
  }
  for (std::size_t i = 0; mainIsFree && i < mainEvents_.size(); ++i) {
    if (mainEvents_[i].ready) {
      found.push_back({mainEvents_[i].order, Kind::mainEvent, i});
    }
  }
  for (std::size_t i = 0; i < workers_.size(); ++i) {
    if (workers_[i]->ready) {
      found.push_back({workers_[i]->order, Kind::worker, i});
    }
  }
  addTasksThatCanBegin(found);
  std::sort(found.begin(), found.end(),
            [](const Candidate& a, const Candidate& b) { return a.order < b.order; });
  return found;
}

void VirtualWorld::addTasksThatCanBegin(std::vector<Candidate>& found) const {
  std::set<const Lane*> taken;
  for (std::size_t i = 0; i < tasks_.size(); ++i) {
    const Pending& task = tasks_[i];
    const bool laneIsFree =
        !task.lane || (!task.lane->busy && taken.insert(task.lane.get()).second);
    if (task.ready && laneIsFree) {
      found.push_back({task.order, Kind::task, i});
    }
  }
}

std::optional<VirtualWorld::Candidate> VirtualWorld::choose(bool mainIsFree, SteadyTime limit) {
  if (++steps_ > stepLimit_) {
    throwStuck("the run does not come to an end");
  }
  for (;;) {
    const std::vector<Candidate> ready = candidates(mainIsFree);
    const std::optional<SteadyTime> timer = nextTimer();
    const bool timeMayPass = timer && *timer <= limit;
    if (ready.empty()) {
      if (!timeMayPass) {
        return std::nullopt;
      }
      moveTimeTo(*timer);
      continue;
    }
    const std::size_t options = ready.size() + (timeCompetes_ && timeMayPass ? 1 : 0);
    const std::size_t choice = chooser_ && options > 1 ? chooser_(options) : 0;
    if (choice >= options) {
      throw std::out_of_range("VirtualWorld: the chooser chose none of the candidates");
    }
    if (choice < ready.size()) {
      return ready[choice];
    }
    moveTimeTo(*timer);
  }
}

// Time.

std::optional<SteadyTime> VirtualWorld::nextTimer() const {
  SteadyTime next = kNever;
  const auto look = [&next](const Actor& actor) {
    if (actor.waiting) {
      next = std::min(next, actor.deadline);
    }
  };
  look(*main_);
  for (const auto& worker : workers_) {
    look(*worker);
  }
  for (const auto* list : {&tasks_, &mainEvents_}) {
    for (const Pending& item : *list) {
      next = item.ready ? next : std::min(next, item.at);
    }
  }
  return next == kNever ? std::nullopt : std::optional(next);
}

void VirtualWorld::moveTimeTo(SteadyTime time) {
  now_ = std::max(now_, time);
  // Whatever is due at this moment comes in the order in which it was set up, behind all that is
  // ready already.
  std::map<std::uint64_t, std::function<void()>> due;
  for (Actor* actor : waiters([this](const Actor& one) { return one.deadline <= now_; })) {
    due[actor->order] = [this, actor] { actor->makeReady(Wake::timedOut, ++order_); };
  }
  for (auto* list : {&tasks_, &mainEvents_}) {
    for (Pending& item : *list) {
      if (!item.ready && item.at <= now_) {
        due[item.order] = [this, &item] {
          item.ready = true;
          item.order = ++order_;
        };
      }
    }
  }
  for (const auto& [order, makeReady] : due) {
    makeReady();
  }
}

// The baton.

VirtualWorld::Worker& VirtualWorld::start(std::size_t task) {
  Pending begun = std::move(tasks_[task]);
  tasks_.erase(tasks_.begin() + static_cast<std::ptrdiff_t>(task));
  const auto isIdle = [](const auto& worker) { return worker->idle; };
  const auto idle = std::find_if(workers_.begin(), workers_.end(), isIdle);
  const bool found = idle != workers_.end();
  Worker& worker = found ? **idle : *workers_.emplace_back(std::make_unique<Worker>());
  worker.idle = false;
  worker.name = std::move(begun.name);
  worker.task = std::move(begun.task);
  worker.lane = std::move(begun.lane);
  if (worker.lane) {
    worker.lane->busy = true;
  }
  if (!found) {
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
    Task task = std::exchange(worker.task, {});
    lock.unlock();
    task();
    task = {};
    lock.lock();
    worker.idle = true;
    if (const std::shared_ptr<Lane> lane = std::exchange(worker.lane, nullptr)) {
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

/// On a worker's thread: gives the baton back until the main thread chooses this worker again.
void VirtualWorld::handBack(Actor& worker, Lock& lock) {
  holder_ = main_.get();
  main_->turn.notify_one();
  worker.turn.wait(lock, [&] { return holder_ == &worker; });
}

/// While the main thread waits inside a call, its queue stands still and only tasks go on.
void VirtualWorld::giveTurnsUntilMainIsChosen(Lock& lock) {
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
  if (chosen->kind == Kind::mainItself) {
    main_->ready = false;
    return false;
  }
  resume(chosen->kind == Kind::worker ? *workers_[chosen->index] : start(chosen->index), lock);
  return true;
}

VirtualWorld::Wake VirtualWorld::wait(std::string what, const void* channel, SteadyTime deadline,
                                      bool interruptible) {
  Lock lock(mutex_);
  Actor& me = self();
  if (shutDown_ && interruptible) {
    return Wake::shutDown;
  }
  me.doing = std::move(what);
  me.channel = channel;
  me.deadline = deadline;
  me.interruptible = interruptible;
  me.waiting = true;
  me.order = ++order_;
  if (deadline <= now_) {
    me.makeReady(Wake::timedOut, me.order);
  }
  if (&me == main_.get()) {
    giveTurnsUntilMainIsChosen(lock);
  } else {
    handBack(me, lock);
  }
  return me.result;
}

void VirtualWorld::wake(const void* channel) {
  const Lock lock(mutex_);
  for (Actor* actor : waiters([channel](const Actor& one) { return one.channel == channel; })) {
    actor->makeReady(Wake::signalled, ++order_);
  }
}

/// Those who wait and of whom `which` holds, in the order in which they began to.
std::vector<VirtualWorld::Actor*> VirtualWorld::waiters(
    const std::function<bool(const Actor&)>& which) {
  std::vector<Actor*> found;
  const auto look = [&](Actor& actor) {
    if (actor.waiting && which(actor)) {
      found.push_back(&actor);
    }
  };
  look(*main_);
  for (const auto& worker : workers_) {
    look(*worker);
  }
  std::sort(found.begin(), found.end(),
            [](const Actor* a, const Actor* b) { return a->order < b->order; });
  return found;
}

void VirtualWorld::mayBeOvertaken() {
  if (!preemptive_) {
    return;
  }
  Lock lock(mutex_);
  Actor& me = self();
  me.makeReady(Wake::signalled, ++order_);
  if (&me == main_.get()) {
    giveTurnsUntilMainIsChosen(lock);
  } else {
    handBack(me, lock);
  }
}

// Runs.

VirtualWorld::Step VirtualWorld::step(SteadyTime limit) {
  Lock lock(mutex_);
  const std::optional<Candidate> chosen = choose(true, limit);
  if (!chosen) {
    return Step::nothing;
  }
  if (chosen->kind == Kind::worker || chosen->kind == Kind::task) {
    resume(chosen->kind == Kind::worker ? *workers_[chosen->index] : start(chosen->index), lock);
    return Step::inBackground;
  }
  Pending begun;
  if (chosen->kind == Kind::mainQueue) {
    begun = std::move(mainQueue_.front());
    mainQueue_.pop_front();
  } else {
    begun = std::move(mainEvents_[chosen->index]);
    mainEvents_.erase(mainEvents_.begin() + static_cast<std::ptrdiff_t>(chosen->index));
  }
  lock.unlock();
  ++mainTasks_;
  runLogged(begun.task);
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
  now_ = std::max(now_, last);
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
  std::deque<Pending> dropped;
  std::vector<Pending> droppedEvents;
  const Lock lock(mutex_);
  mainQueueClosed_ = true;
  dropped.swap(mainQueue_);
  droppedEvents.swap(mainEvents_);
}

void VirtualWorld::shutDown() {
  if (quit_) {
    return;
  }
  closeMainQueue();
  beginRun();
  std::vector<Pending> dropped;
  Lock lock(mutex_);
  shutDown_ = true;
  dropped.swap(tasks_);
  for (Actor* actor : waiters([](const Actor& one) { return one.interruptible; })) {
    actor->makeReady(Wake::shutDown, ++order_);
  }
  const auto isBusy = [](const auto& worker) { return !worker->idle; };
  while (std::any_of(workers_.begin(), workers_.end(), isBusy)) {
    const std::optional<Candidate> chosen = choose(false, kNever);
    if (!chosen || chosen->kind != Kind::worker) {
      throwStuck("the shutdown waits for a task that does not end");
    }
    resume(*workers_[chosen->index], lock);
  }
  quit_ = true;
  for (const auto& worker : workers_) {
    worker->turn.notify_one();
  }
  lock.unlock();
  for (const auto& worker : workers_) {
    worker->thread.join();
  }
  workers_.clear();
}

void VirtualWorld::throwStuck(const std::string& reason) {
  const std::string message = "VirtualWorld: " + reason + "; " + whoWaits();
  if (mainTasks_ > 0) {
    stuck_ = message;
  }
  throw StuckError(message);
}

std::string VirtualWorld::whoWaits() const {
  std::string text;
  const auto tell = [&text](const std::string& who, const Actor& actor) {
    if (actor.waiting) {
      text += (text.empty() ? "" : ", ") + who + " " + actor.doing;
    }
  };
  tell("the main thread", *main_);
  for (const auto& worker : workers_) {
    tell(worker->name, *worker);
  }
  return text.empty() ? "no task waits" : "waiting: " + text;
}

}  // namespace orlix
