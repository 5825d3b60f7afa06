// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/VirtualAgenda.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

namespace orlix {

SteadyTime laterBy(SteadyTime start, Duration span) {
  return span > kNever - start ? kNever : start + span;
}

// Tasks.

VirtualAgenda::Item VirtualAgenda::item(std::string name, Task task, Duration delay) {
  const SteadyTime at = laterBy(now_, delay);
  return {at, ++order_, at <= now_, std::move(name), std::move(task), nullptr};
}

void VirtualAgenda::addTask(std::string name, Task task, Duration delay,
                            std::shared_ptr<Lane> lane) {
  tasks_.push_back(item(std::move(name), std::move(task), delay));
  tasks_.back().lane = std::move(lane);
}

void VirtualAgenda::addMainTask(Task task) {
  mainQueue_.push_back(item("main queue", std::move(task), {}));
}

void VirtualAgenda::addMainEvent(Task task, Duration delay) {
  mainEvents_.push_back(item("main event", std::move(task), delay));
}

VirtualAgenda::Item VirtualAgenda::takeTask(std::size_t index) {
  Item taken = std::move(tasks_[index]);
  tasks_.erase(tasks_.begin() + static_cast<std::ptrdiff_t>(index));
  return taken;
}

VirtualAgenda::Item VirtualAgenda::takeMain(const Candidate& candidate) {
  if (candidate.kind == Kind::mainQueue) {
    Item taken = std::move(mainQueue_.front());
    mainQueue_.pop_front();
    return taken;
  }
  Item taken = std::move(mainEvents_[candidate.index]);
  mainEvents_.erase(mainEvents_.begin() + static_cast<std::ptrdiff_t>(candidate.index));
  return taken;
}

std::vector<VirtualAgenda::Item> VirtualAgenda::dropTasks() { return std::exchange(tasks_, {}); }

std::vector<VirtualAgenda::Item> VirtualAgenda::dropMain() {
  std::vector<Item> dropped = std::exchange(mainEvents_, {});
  std::move(mainQueue_.begin(), mainQueue_.end(), std::back_inserter(dropped));
  mainQueue_.clear();
  return dropped;
}

// Waiters.

void VirtualAgenda::beginWait(Waiter& waiter, std::string what, const void* channel,
                              SteadyTime deadline, bool interruptible) {
  waiter.doing = std::move(what);
  waiter.channel = channel;
  waiter.deadline = deadline;
  waiter.interruptible = interruptible;
  waiter.waiting = true;
  waiter.order = ++order_;
  if (deadline <= now_) {
    makeReady(waiter, Wake::timedOut);
  }
}

void VirtualAgenda::makeReady(Waiter& waiter, Wake how) {
  waiter.waiting = false;
  waiter.ready = true;
  waiter.result = how;
  waiter.order = ++order_;
}

/// Waiters that satisfy `which`, in the order in which they began to wait.
std::vector<VirtualAgenda::Waiter*> VirtualAgenda::waitersOf(
    const std::function<bool(const Waiter&)>& which) const {
  std::vector<Waiter*> found;
  std::copy_if(waiters_.begin(), waiters_.end(), std::back_inserter(found),
               [&which](const Waiter* one) { return one->waiting && which(*one); });
  std::sort(found.begin(), found.end(),
            [](const Waiter* a, const Waiter* b) { return a->order < b->order; });
  return found;
}

void VirtualAgenda::wake(const void* channel) {
  for (Waiter* one : waitersOf([channel](const Waiter& w) { return w.channel == channel; })) {
    makeReady(*one, Wake::signalled);
  }
}

void VirtualAgenda::wakeForShutdown() {
  for (Waiter* one : waitersOf([](const Waiter& w) { return w.interruptible; })) {
    makeReady(*one, Wake::shutDown);
  }
}

std::string VirtualAgenda::whoWaits() const {
  std::string text;
  for (const Waiter* one : waitersOf([](const Waiter&) { return true; })) {
    text += (text.empty() ? "waiting: " : ", ") + one->name + " " + one->doing;
  }
  return text.empty() ? "nothing waits" : text;
}

// Choice.

std::vector<VirtualAgenda::Candidate> VirtualAgenda::candidates(bool mainIsFree) {
  std::vector<Candidate> found;
  for (Waiter* waiter : waiters_) {
    if (waiter->ready) {
      found.push_back({waiter->order, Kind::waiter, 0, waiter});
    }
  }
  if (mainIsFree && !mainQueue_.empty()) {
    found.push_back({mainQueue_.front().order, Kind::mainQueue, 0, nullptr});
  }
  for (std::size_t i = 0; mainIsFree && i < mainEvents_.size(); ++i) {
    if (mainEvents_[i].ready) {
      found.push_back({mainEvents_[i].order, Kind::mainEvent, i, nullptr});
    }
  }
  addTasksThatCanBegin(found);
  std::sort(found.begin(), found.end(),
            [](const Candidate& a, const Candidate& b) { return a.order < b.order; });
  return found;
}

void VirtualAgenda::addTasksThatCanBegin(std::vector<Candidate>& found) const {
  std::set<const Lane*> taken;
  for (std::size_t i = 0; i < tasks_.size(); ++i) {
    const Item& task = tasks_[i];
    const bool laneIsFree =
        !task.lane || (!task.lane->busy && taken.insert(task.lane.get()).second);
    if (task.ready && laneIsFree) {
      found.push_back({task.order, Kind::task, i, nullptr});
    }
  }
}

std::optional<VirtualAgenda::Candidate> VirtualAgenda::choose(bool mainIsFree, SteadyTime limit) {
  for (;;) {
    const std::vector<Candidate> ready = candidates(mainIsFree);
    const std::optional<SteadyTime> timer = nextTimer();
    const bool timeMayPass = timer && *timer <= limit;
    if (ready.empty() && !timeMayPass) {
      return std::nullopt;
    }
    std::size_t choice = 0;
    if (!ready.empty()) {
      const std::size_t options = ready.size() + (timeCompetes_ && timeMayPass ? 1 : 0);
      choice = chooser_ && options > 1 ? chooser_(options) : 0;
      if (choice >= options) {
        throw std::out_of_range("VirtualWorld: the chooser chose none of the candidates");
      }
    }
    if (choice < ready.size()) {
      return ready[choice];
    }
    moveTimeTo(*timer);
  }
}

// Time.

std::optional<SteadyTime> VirtualAgenda::nextTimer() const {
  SteadyTime next = kNever;
  for (const Waiter* waiter : waiters_) {
    next = waiter->waiting ? std::min(next, waiter->deadline) : next;
  }
  for (const auto* list : {&tasks_, &mainEvents_}) {
    for (const Item& item : *list) {
      next = item.ready ? next : std::min(next, item.at);
    }
  }
  return next == kNever ? std::nullopt : std::optional(next);
}

void VirtualAgenda::moveTimeTo(SteadyTime time) {
  now_ = std::max(now_, time);
  // Entries due at this moment are queued in order of creation, behind those that are ready
  // already.
  std::map<std::uint64_t, std::function<void()>> due;
  for (Waiter* one : waitersOf([this](const Waiter& w) { return w.deadline <= now_; })) {
    due[one->order] = [this, one] { makeReady(*one, Wake::timedOut); };
  }
  for (auto* list : {&tasks_, &mainEvents_}) {
    for (Item& item : *list) {
      if (!item.ready && item.at <= now_) {
        due[item.order] = [this, &item] {
          item.ready = true;
          item.order = ++order_;
        };
      }
    }
  }
  for (const auto& [order, comes] : due) {
    comes();
  }
}

}  // namespace orlix
