// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Clock.h"

namespace orlix {

/// A timer: puts a task on the main queue after a time, unless it is destroyed first. The task may
/// still run shortly after that, but never after the host's shutdown; it is destroyed on a
/// background thread or the main thread.
class Alarm {
 public:
  /// Throws std::system_error when no thread can be created to wait on.
  Alarm(Duration after, Task task);
  ~Alarm();
  Alarm(const Alarm&) = delete;
  Alarm& operator=(const Alarm&) = delete;

 private:
  struct State {
    std::unique_ptr<Condition> condition;
    bool off = false;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace orlix
