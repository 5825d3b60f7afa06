// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// The main (user-interface) thread, as the library sees it.
///
/// Thread: `async` and `isCurrent` may be called from any thread.
/// Order: tasks run one at a time, in the order of their `async` calls.
/// After `close`: no task runs; pending tasks and those passed to `async` are dropped. An `async`
/// that throws (std::bad_alloc) leaves the queue unchanged. What a task throws is logged and does
/// not end the process.
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

}  // namespace orlix
