// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// A task with its own stack that can pause and be resumed, on the thread that made it. A switch
/// takes well below a microsecond; one between threads takes ten. Not interruptible: release a
/// fiber only after its task has returned.
class Fiber {
 public:
  Fiber();
  ~Fiber();
  Fiber(const Fiber&) = delete;
  Fiber& operator=(const Fiber&) = delete;

  /// Runs `task`, which must not throw, until it pauses or returns. To be called while no task is
  /// in progress.
  void start(Task task);
  /// Continues the task from its `pause` until the next one, or until it returns.
  void resume();
  /// From within the task.
  void pause();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace orlix
