#include "orlixkit/platform/posix/WorkerPool.h"

#include <pthread.h>

#include "orlixkit/platform/BackgroundQueues.h"

namespace orlix {

namespace {

/// What one checkout uses at a time: the request's caller, its callbacks, a poll.
constexpr std::size_t keptIdle = 4;

}  // namespace

void WorkerPool::run(Task task) {
  Threads ended;
  {
    const std::lock_guard lock(lock_);
    if (closed_) {
      return;
    }
    if (idle_ <= pending_.size()) {
      startThread();
    }
    pending_.push_back(std::move(task));
    ended.swap(ended_);
  }
  changed_.notify_one();
  for (std::thread& thread : ended) {
    thread.join();
  }
}

void WorkerPool::startThread() {
  const Threads::iterator self = threads_.emplace(threads_.end());
  try {
    // The new thread waits for the lock before it looks at its own entry.
    *self = std::thread([this, self] { work(self); });
  } catch (...) {
    threads_.erase(self);
    throw;
  }
  pthread_setname_np(self->native_handle(), "orlix-worker");
}

void WorkerPool::work(Threads::iterator self) {
  std::unique_lock lock(lock_);
  while (idle_ < keptIdle || !pending_.empty()) {
    ++idle_;
    changed_.wait(lock, [this] { return closed_ || !pending_.empty(); });
    --idle_;
    if (closed_) {
      return;
    }
    Task task = std::move(pending_.front());
    pending_.pop_front();
    lock.unlock();
    runLoggedInBackground(task);
    task = {};  // what it holds is released without the lock
    lock.lock();
    if (closed_) {
      return;
    }
  }
  ended_.splice(ended_.end(), threads_, self);
}

void WorkerPool::close() {
  // Before anything is dropped, so that what is dropped can tell why.
  shutdown_.request_stop();
  std::deque<Task> dropped;
  Threads threads;
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    dropped.swap(pending_);
    threads.splice(threads.end(), threads_);
    threads.splice(threads.end(), ended_);
  }
  changed_.notify_all();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace orlix
