#pragma once

#include <memory>

#include "orlixkit/platform/Clock.h"

namespace orlix {

/// Lets one caller at a time open a session. The others wait on the host's clock, so that they also
/// wait in virtual time, and are woken at its shutdown. Held across the exchange with the server,
/// so never taken on the main thread while a request may be under way, `updateTC` excepted.
/// Lockable like a mutex; not recursive.
class OpeningTurn {
 public:
  OpeningTurn();

  /// Blocks until it is this caller's turn. Throws NetworkException at the host's shutdown.
  void lock();
  void unlock();

 private:
  std::shared_ptr<Clock> clock_;
  std::unique_ptr<Condition> condition_;
  bool taken_ = false;
};

}  // namespace orlix
