// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>

#include "orlixkit/host/Host.h"

namespace orlix::shop {

/// Lets the application run until something holds, with an end to its patience.
class Waiter {
 public:
  using Progress = std::function<void(std::chrono::seconds elapsed)>;

  explicit Waiter(Ports ports) : ports_(std::move(ports)) {}

  /// Runs the main queue until `done` holds: true, or until `limit` has passed: false. `progress`
  /// is called about once a second. Main thread only.
  bool waitFor(Duration limit, const std::function<bool()>& done, const Progress& progress = {});

  /// Runs all that the main queue holds now. Main thread only.
  void drain();

  /// Runs `work`, which may block, in the background and the main queue meanwhile. Throws what
  /// `work` throws.
  void runBlocking(const std::function<void()>& work);

 private:
  Ports ports_;
};

}  // namespace orlix::shop
