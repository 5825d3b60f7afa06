// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixCondition.h"

namespace orlix {

bool PosixCondition::waitUntil(SteadyTime deadline) {
  const std::uint64_t before = signals_;
  std::unique_lock held(mutex_, std::adopt_lock);
  const bool woken =
      changed_.wait_until(held, shutdown_, deadline, [this, before] { return signals_ != before; });
  held.release();  // the lock stays held, as the caller left it
  return woken && !shutdown_.stop_requested();
}

void PosixCondition::signal() {
  ++signals_;
  changed_.notify_all();
}

}  // namespace orlix
