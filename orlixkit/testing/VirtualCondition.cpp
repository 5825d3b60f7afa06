// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/VirtualCondition.h"

#include <stdexcept>

namespace orlix {

void VirtualCondition::lock() {
  world_->mayBeOvertaken();
  take();
}

void VirtualCondition::unlock() {
  release();
  world_->mayBeOvertaken();
}

void VirtualCondition::take() {
  while (held_) {
    world_->wait("waits for a lock", &held_, kNever, false);
  }
  held_ = true;
}

void VirtualCondition::release() {
  if (!held_) {
    throw std::logic_error("VirtualCondition: the lock is not held");
  }
  held_ = false;
  world_->wake(&held_);
}

bool VirtualCondition::waitUntil(SteadyTime deadline) {
  release();
  bool signalled = false;
  try {
    signalled = world_->wait("waits for a signal", this, deadline) == Wake::signalled;
  } catch (const StuckError&) {
    // Reacquire the lock: the caller will release it while the exception propagates.
    held_ = true;
    throw;
  }
  take();
  return signalled;
}

void VirtualCondition::signal() {
  world_->wake(this);
  world_->mayBeOvertaken();
}

}  // namespace orlix
