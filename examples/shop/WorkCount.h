// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

#include "orlixkit/host/Host.h"

namespace orlix::shop {

/// Counts what a host has under way: tasks waiting for the main queue (the end of an animation is
/// one), tasks in the background (a request keeps one until it is answered).
/// Thread: any.
class WorkCount : public std::enable_shared_from_this<WorkCount> {
 public:
  /// The same ports, with everything counted that goes through them.
  static Ports count(Ports ports, const std::shared_ptr<WorkCount>& into);

  enum class Place { mainQueue, background };

  bool isIdle() const { return underWay_ == 0; }
  bool isMainQueueIdle() const { return onMainQueue_ == 0; }
  /// The task, counted until it has run or has been dropped.
  Task counted(Place place, Task task);

 private:
  friend class CountedTask;
  void begin(Place place);
  void end(Place place);

  std::atomic<std::size_t> underWay_{0};
  std::atomic<std::size_t> onMainQueue_{0};
  std::shared_ptr<MainQueue> wake_;
};

}  // namespace orlix::shop
