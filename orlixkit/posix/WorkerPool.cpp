// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/WorkerPool.h"

#include <algorithm>
#include <pthread.h>
#include <thread>
#include <utility>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ports/Secret.h"
#include "orlixkit/posix/Semaphore.h"

namespace orlix {

namespace {

/// The number of tasks that a checkout runs at a time, plus one.
constexpr std::size_t kKeptIdle = 3;

}  // namespace

struct WorkerPool::Worker {
  std::thread thread;
  Semaphore called;
  Task task;  // the next one; guarded by the pool's lock
};

void WorkerPool::run(Task task) {
  WorkerPointer called;
  std::list<WorkerPointer> ended;
  {
    const std::lock_guard lock(lock_);
    if (closed_) {
      return;
    }
    if (idle_.empty()) {
      start(std::move(task));
    } else {
      called = std::move(idle_.back());
      idle_.pop_back();
      called->task = std::move(task);
    }
    ended.swap(ended_);
  }
  if (called) {
    called->called.post();
  }
  for (const WorkerPointer& worker : ended) {
    worker->thread.join();
  }
}

void WorkerPool::start(Task task) {
  const auto worker = std::make_shared<Worker>();
  worker->task = std::move(task);
  idle_.reserve(kKeptIdle);  // so that a worker's rest needs no memory
  workers_.push_back(worker);
  try {
    // The new thread waits for the lock before it looks at anything.
    worker->thread = std::thread([this, worker] { work(worker); });
  } catch (...) {
    workers_.pop_back();
    throw;
  }
}

void WorkerPool::work(const WorkerPointer& self) {
  pthread_setname_np(pthread_self(), "orlix-worker");
  std::unique_lock lock(lock_);
  while (!closed_) {
    Task task = std::exchange(self->task, {});
    lock.unlock();
    runLoggedInBackground(task);
    task = {};  // what it holds is released without the lock
    wipeStack();
    lock.lock();
    if (closed_) {
      return;
    }
    if (idle_.size() == kKeptIdle) {
      ended_.splice(ended_.end(), workers_, std::find(workers_.begin(), workers_.end(), self));
      return;
    }
    idle_.push_back(self);
    lock.unlock();
    self->called.wait();
    lock.lock();
  }
}

void WorkerPool::close() {
  // Before anything is dropped, so that what is dropped can tell why.
  shutdown_.request_stop();
  std::list<WorkerPointer> workers;  // with tasks not begun, which are dropped without the lock
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    idle_.clear();
    workers.swap(workers_);
    workers.splice(workers.end(), ended_);
  }
  for (const WorkerPointer& worker : workers) {
    worker->called.post();
  }
  for (const WorkerPointer& worker : workers) {
    worker->thread.join();
  }
}

}  // namespace orlix
