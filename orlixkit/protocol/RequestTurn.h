#pragma once

#include <memory>

#include "orlixkit/platform/Clock.h"

namespace orlix {

/// Guards the session values of a client; whoever waits for them waits on the host's clock, so that
/// it also waits in virtual time. Lockable like a mutex; not recursive.
class RequestTurn {
 public:
  RequestTurn();

  /// Blocks until it is this caller's turn. Throws NetworkException at the host's shutdown.
  void lock();
  void unlock();

 private:
  std::shared_ptr<Clock> clock_;
  std::unique_ptr<Condition> condition_;
  bool taken_ = false;
};

}  // namespace orlix
