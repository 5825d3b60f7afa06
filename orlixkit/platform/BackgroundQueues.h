#pragma once

#include <memory>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

enum class QualityOfService { userInitiated, high, background };

/// Runs its tasks one at a time, in the order in which they were added, off the main thread. The
/// tasks run to their end also when the queue itself is released before.
class OperationQueue {
 public:
  virtual ~OperationQueue() = default;
  virtual void add(Task task) = 0;
};

/// Everything that runs off the main thread.
///
/// Thread: every operation may be called from any thread; `close` from the main thread.
/// A task may block; other queues go on meanwhile.
/// What a task throws ends up in the log (`runLoggedInBackground`), and the process goes on.
class BackgroundQueues {
 public:
  virtual ~BackgroundQueues() = default;

  /// Runs the task concurrently with all others.
  virtual void global(QualityOfService service, Task task) = 0;
  virtual std::shared_ptr<OperationQueue> newOperationQueue() = 0;

  /// Wakes every sleeping or waiting task, drops those not yet started and returns when no task
  /// runs any more. What is added afterwards is dropped.
  virtual void close() = 0;
};

/// For those who implement the queues: runs one of their tasks.
void runLoggedInBackground(const Task& task);

}  // namespace orlix
