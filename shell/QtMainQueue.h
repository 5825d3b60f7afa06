// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QEvent>
#include <QObject>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/SystemLog.h"

namespace orlix::shell {

/// The main queue on Qt's event loop. The thread that makes it, which must be that of the
/// application object, is its main thread. Each event runs one task, so that Qt draws and handles
/// input in between. `runUntil` runs a nested event loop; it also returns when the application
/// quits. An exception thrown by a task is logged as one line, and the loop continues.
class QtMainQueue : public MainQueue {
 public:
  explicit QtMainQueue(std::shared_ptr<SystemLog> log);
  ~QtMainQueue() override;
  QtMainQueue(const QtMainQueue&) = delete;
  QtMainQueue& operator=(const QtMainQueue&) = delete;

  void async(Task task) override;
  bool isCurrent() const override;
  void runUntil(const std::function<bool()>& done) override;
  void close() override;

 private:
  class Receiver;
  /// A `runUntil` in progress.
  struct Run;

  void runNext();
  /// Ends the innermost run when its condition holds. No task runs before that has returned.
  void askWhetherDone();
  void wakeWhenPending();
  void wakeWhenPending(std::unique_ptr<QEvent> event);

  const std::shared_ptr<SystemLog> log_;
  // Deleted on its own thread, whichever thread releases the queue last.
  const std::shared_ptr<Receiver> receiver_;
  Run* innermost_ = nullptr;  // main thread
  std::mutex lock_;
  std::deque<Task> pending_;  // guarded by lock_
  bool awake_ = false;        // guarded by lock_: an event is pending
  bool closed_ = false;       // guarded by lock_
};

}  // namespace orlix::shell
