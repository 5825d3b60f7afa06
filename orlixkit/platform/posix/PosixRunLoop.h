#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/SystemLog.h"
#include "orlixkit/platform/posix/Semaphore.h"

namespace orlix {

/// A main queue for a process without a toolkit's event loop. The thread that makes it is its main
/// thread. An exception that leaves a task goes to the log as one line; the loop goes on.
class PosixRunLoop : public MainQueue {
 public:
  explicit PosixRunLoop(std::shared_ptr<SystemLog> log);

  void async(Task task) override;
  bool isCurrent() const override;
  void runUntil(const std::function<bool()>& done) override;
  void close() override;

 private:
  /// The next task, waited for; none when the loop is closed.
  Task next();

  const std::thread::id mainThread_ = std::this_thread::get_id();
  const std::shared_ptr<SystemLog> log_;
  std::mutex lock_;
  Semaphore given_;           // one for each task
  std::deque<Task> pending_;  // guarded by lock_
  bool closed_ = false;       // guarded by lock_
};

}  // namespace orlix
