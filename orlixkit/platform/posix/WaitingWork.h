#pragma once

#include <functional>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/Clock.h"

namespace orlix {

/// What a thread can do for itself while it waits on a condition, instead of leaving it to other
/// threads and being woken by them: a request's caller does its own input and output. Each
/// hand-over between threads that this saves costs as much as a third of a request over a kept
/// connection.
class WaitingWork {
 public:
  virtual ~WaitingWork() = default;
  /// Whether this thread has started something that nobody attends to at the moment.
  virtual bool isWaitingForMe() = 0;
  /// Works until `done` holds, the deadline has passed or nothing of this thread's is left; it may
  /// also leave the rest to others before that. `done` is asked again after each `wake`.
  virtual void workUntil(const std::function<bool()>& done, SteadyTime deadline) = 0;
  /// Any thread.
  virtual void wake() = 0;
};

/// An operation queue whose tasks the thread that adds them may run itself.
class SelfServedQueue : public OperationQueue {
 public:
  /// Like `add`, but gives back what runs the queue's tasks, for the caller to run soon. Empty when
  /// somebody runs them already.
  virtual Task addAndTake(Task task) = 0;
  /// Leaves to a worker after all what `addAndTake` gave.
  virtual void giveBack(Task run) = 0;
};

}  // namespace orlix
