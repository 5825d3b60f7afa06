// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/SystemLog.h"
#include "orlixkit/posix/Semaphore.h"

namespace orlix {

/// A main queue for a process without a toolkit's event loop. The thread that makes it is its main
/// thread. An exception thrown by a task is logged as one line, and the loop continues.
class PosixRunLoop : public MainQueue {
 public:
  explicit PosixRunLoop(std::shared_ptr<SystemLog> log);

  void async(Task task) override;
  bool isCurrent() const override;
  void runUntil(const std::function<bool()>& done) override;
  void close() override;

 private:
  /// Waits for the next task; empty when the loop is closed.
  Task next();

  const std::thread::id mainThread_ = std::this_thread::get_id();
  const std::shared_ptr<SystemLog> log_;
  std::mutex lock_;
  Semaphore given_;           // counts the pending tasks
  std::deque<Task> pending_;  // guarded by lock_
  bool closed_ = false;       // guarded by lock_
};

}  // namespace orlix
