#pragma once

#include <functional>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/SystemLog.h"

namespace orlix {

/// The main (user-interface) thread, as the library sees it.
///
/// Thread: `async` and `isCurrent` may be called from any thread.
/// Order: tasks run one at a time, in the order of their `async` calls.
/// After `close`: no task runs; `async` drops what it is given, and what was pending is dropped.
/// An `async` that throws (std::bad_alloc) has left the queue as it was. A task that throws goes
/// through `runLogged`.
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

/// Runs a fire-and-forget task on the main thread: a main-queue task, a user's tap. What it throws
/// ends up in the log, and the application goes on. When it was memory that ran out, or a store
/// that cannot be read (StoreException), half of a step may be missing: the installed host's
/// `endFlow` then ends the flow.
void runLogged(const Task& task);
/// The same with a log that needs no host.
void runLogged(const Task& task, SystemLog& log);

/// Brings a result to the main queue of the installed host, off the main thread. Waits for memory,
/// some seconds at most: who works in the background has nobody else to tell of a lack of it.
void handOver(const Task& task);

}  // namespace orlix
