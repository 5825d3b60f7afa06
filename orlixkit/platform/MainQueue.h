#pragma once

#include <functional>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/SystemLog.h"

namespace orlix {

/// The main (user-interface) thread, as the library sees it.
///
/// Thread: `async` and `isCurrent` may be called from any thread.
/// Order: tasks run one at a time, in the order of their `async` calls.
/// After `close`: no task runs; pending tasks and those passed to `async` are dropped. An `async`
/// that throws (std::bad_alloc) leaves the queue unchanged. Tasks run through `runLogged`.
class MainQueue {
 public:
  virtual ~MainQueue() = default;

  virtual void async(Task task) = 0;
  virtual bool isCurrent() const = 0;

  /// Runs pending tasks until `done` holds or the queue is closed. Main thread only; tasks may call
  /// it again. `done` is evaluated after every task.
  virtual void runUntil(const std::function<bool()>& done) = 0;

  virtual void close() = 0;
};

/// Runs a fire-and-forget task on the main thread: a main-queue task, a user's tap. Exceptions are
/// logged, and the application continues. After std::bad_alloc or StoreException the step may be
/// incomplete, so the installed host's `endFlow` ends the flow.
void runLogged(const Task& task);
/// Overload that writes to the given log instead of the host's.
void runLogged(const Task& task, SystemLog& log);

/// Posts a result from a background thread to the main queue of the installed host. Retries for
/// some seconds when memory is short, since a background task has no caller to report the failure
/// to.
void handOver(const Task& task);

}  // namespace orlix
