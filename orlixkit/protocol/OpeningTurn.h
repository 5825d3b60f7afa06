// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Clock.h"

namespace orlix {

/// Lock that allows one caller at a time to open a session. Waiters use the host's clock, so that
/// they also wait in virtual time, and are woken at its shutdown. Held during the exchange with the
/// server, so the main thread must not take it while a request may be pending, `updateTC` excepted.
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
