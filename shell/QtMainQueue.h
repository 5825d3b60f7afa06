#pragma once

#include <QEvent>
#include <QObject>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/SystemLog.h"

namespace orlix::shell {

/// The main queue on Qt's event loop. The thread that makes it, which must be the one of the
/// application object, is its main thread. Tasks run one an event, so that the toolkit draws and
/// listens in between. `runUntil` runs a loop of its own inside; it also returns when the
/// application quits. An exception that leaves a task goes to the log as one line; the loop goes
/// on.
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
  /// A `runUntil` that has not returned.
  struct Run;

  void runNext();
  /// Ends the innermost run when its condition holds. No task runs until it has returned.
  void askWhetherDone();
  void wakeWhenPending();
  void wakeWhenPending(std::unique_ptr<QEvent> event);

  const std::shared_ptr<SystemLog> log_;
  // Ends on its own thread, whoever releases the queue last.
  const std::shared_ptr<Receiver> receiver_;
  Run* innermost_ = nullptr;  // main thread
  std::mutex lock_;
  std::deque<Task> pending_;  // guarded by lock_
  bool awake_ = false;        // guarded by lock_: an event is on its way
  bool closed_ = false;       // guarded by lock_
};

}  // namespace orlix::shell
