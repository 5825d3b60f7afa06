// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/testing/VirtualWorld.h"

namespace orlix {

/// Lock and condition of a virtual world. Unlocking or waiting without the lock, undefined for a
/// real one, throws std::logic_error.
class VirtualCondition : public Condition {
 public:
  explicit VirtualCondition(std::shared_ptr<VirtualWorld> world) : world_(std::move(world)) {}

  void lock() override;
  void unlock() override;
  bool waitUntil(SteadyTime deadline) override;
  void signal() override;

 private:
  void take();
  void release();

  std::shared_ptr<VirtualWorld> world_;
  bool held_ = false;
};

}  // namespace orlix
