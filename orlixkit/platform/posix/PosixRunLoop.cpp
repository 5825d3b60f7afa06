#include "orlixkit/platform/posix/PosixRunLoop.h"

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
  changed_.notify_one();
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
  std::unique_lock lock(lock_);
  changed_.wait(lock, [this] { return closed_ || !pending_.empty(); });
  if (closed_) {
    return {};
  }
  Task task = std::move(pending_.front());
  pending_.pop_front();
  return task;
}

void PosixRunLoop::close() {
  std::deque<Task> dropped;  // released without the lock: what a task holds may call back in here
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    dropped.swap(pending_);
  }
  changed_.notify_all();
}

}  // namespace orlix
