// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixRunLoop.h"

#include "orlixkit/host/RunningTasks.h"

namespace orlix {

PosixRunLoop::PosixRunLoop(std::shared_ptr<SystemLog> log) : log_(std::move(log)) {}

void PosixRunLoop::async(Task task) {
  {
    const std::lock_guard lock(lock_);
    if (closed_) {
      return;
    }
    pending_.push_back(std::move(task));
  }
  given_.post();
}

bool PosixRunLoop::isCurrent() const { return std::this_thread::get_id() == mainThread_; }

void PosixRunLoop::runUntil(const std::function<bool()>& done) {
  while (!done()) {
    const Task task = next();
    if (!task) {
      return;
    }
    runLogged(task, *log_);
  }
}

Task PosixRunLoop::next() {
  given_.wait();
  const std::lock_guard lock(lock_);
  if (closed_) {
    given_.post();  // wake the next caller as well
    return {};
  }
  Task task = std::move(pending_.front());
  pending_.pop_front();
  return task;
}

void PosixRunLoop::close() {
  std::deque<Task> dropped;  // released unlocked: captures' destructors may call back
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    dropped.swap(pending_);
  }
  given_.post();
}

}  // namespace orlix
