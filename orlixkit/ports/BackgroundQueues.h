// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

enum class QualityOfService { userInitiated, high, background };

/// Runs its tasks one at a time, in the order in which they were added, off the main thread.
/// Releasing the queue does not cancel its tasks.
class OperationQueue {
 public:
  virtual ~OperationQueue() = default;
  virtual void add(Task task) = 0;
};

/// Runs tasks off the main thread.
///
/// Thread: every operation may be called from any thread; `close` from the main thread.
/// A task may block; other queues continue to run.
/// An exception thrown by a task is logged and does not end the process.
class BackgroundQueues {
 public:
  virtual ~BackgroundQueues() = default;

  /// Runs the task concurrently with all others.
  virtual void global(QualityOfService service, Task task) = 0;
  virtual std::shared_ptr<OperationQueue> newOperationQueue() = 0;

  /// Wakes every sleeping or waiting task, drops tasks that have not started and returns when no
  /// task is running. Tasks added afterwards are dropped.
  virtual void close() = 0;
};

}  // namespace orlix
