// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixBackgroundQueues.h"

#include <deque>
#include <mutex>
#include <utility>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/posix/WorkerPool.h"

namespace orlix {

namespace {

/// The tasks of one operation queue. A worker that drains them keeps them alive, so they outlive
/// the queue they were added to.
class SerialTasks : public std::enable_shared_from_this<SerialTasks> {
 public:
  explicit SerialTasks(std::shared_ptr<WorkerPool> pool) : pool_(std::move(pool)) {}

  void add(Task task) {
    Task drain;  // made before anything changes, and released without the lock
    {
      const std::lock_guard lock(lock_);
      if (pool_->isClosed()) {
        return;
      }
      if (!draining_) {
        drain = newDrain();
      }
      pending_.push_back(std::move(task));
      draining_ = true;
    }
    if (!drain) {
      return;
    }
    try {
      pool_->run(std::move(drain));
    } catch (...) {
      const std::lock_guard lock(lock_);
      draining_ = false;
      throw;
    }
  }

 private:
  Task newDrain() {
    // Released with the task that the pool gets, whether that is run or dropped.
    const std::shared_ptr<SerialTasks> drained(
        this, [self = shared_from_this()](SerialTasks* tasks) { tasks->dropIfClosed(); });
    return [drained] { drained->drain(); };
  }

  void drain() {
    while (Task task = next()) {
      runLoggedInBackground(task);
    }
  }

  /// A task may hold this very queue: what never runs must not keep it alive.
  void dropIfClosed() {
    std::deque<Task> dropped;  // released without the lock
    const std::lock_guard lock(lock_);
    if (pool_->isClosed()) {
      dropped.swap(pending_);
    }
  }

  /// None when the queue is empty or the pool is closed.
  Task next() {
    const std::lock_guard lock(lock_);
    if (pending_.empty() || pool_->isClosed()) {
      draining_ = false;
      return {};
    }
    Task task = std::move(pending_.front());
    pending_.pop_front();
    return task;
  }

  const std::shared_ptr<WorkerPool> pool_;
  std::mutex lock_;
  std::deque<Task> pending_;  // guarded by lock_
  bool draining_ = false;     // guarded by lock_
};

class SerialQueue : public OperationQueue {
 public:
  explicit SerialQueue(std::shared_ptr<WorkerPool> pool)
      : tasks_(std::make_shared<SerialTasks>(std::move(pool))) {}
  void add(Task task) override { tasks_->add(std::move(task)); }

 private:
  const std::shared_ptr<SerialTasks> tasks_;
};

}  // namespace

PosixBackgroundQueues::PosixBackgroundQueues(std::stop_source shutdown)
    : pool_(std::make_shared<WorkerPool>(std::move(shutdown))) {}

PosixBackgroundQueues::~PosixBackgroundQueues() { pool_->close(); }

void PosixBackgroundQueues::global(QualityOfService, Task task) { pool_->run(std::move(task)); }

std::shared_ptr<OperationQueue> PosixBackgroundQueues::newOperationQueue() {
  return std::make_shared<SerialQueue>(pool_);
}

void PosixBackgroundQueues::close() { pool_->close(); }

}  // namespace orlix
