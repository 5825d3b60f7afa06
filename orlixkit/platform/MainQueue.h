#pragma once

#include <functional>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// The main (user-interface) thread, as the library sees it.
///
/// Thread: `async` and `isCurrent` may be called from any thread.
/// Order: tasks run one at a time, in the order of their `async` calls.
/// After `close`: no task runs; `async` drops what it is given, and what was pending is dropped.
class MainQueue {
 public:
  virtual ~MainQueue() = default;

  virtual void async(Task task) = 0;
  virtual bool isCurrent() const = 0;

  /// Runs pending tasks until `done` holds or the queue is closed. Main thread only; tasks may call
  /// it again. `done` is asked anew after every task.
  virtual void runUntil(const std::function<bool()>& done) = 0;

  virtual void close() = 0;
};

/// Runs something that the main thread owes nobody a result for: a main-queue task, a user's tap.
/// What it throws ends up in the log, and the application goes on.
void runLogged(const Task& task);

}  // namespace orlix
