#include "orlixkit/platform/posix/PosixCondition.h"

#include "orlixkit/platform/posix/WaitingWork.h"

namespace orlix {

bool PosixCondition::waitUntil(SteadyTime deadline) {
  const std::uint64_t before = signals_;
  const auto signalled = [this, before] { return signals_ != before; };
  std::unique_lock held(mutex_, std::adopt_lock);
  if (work_ && work_->isWaitingForMe()) {
    held.unlock();
    workUntil(signalled, deadline);
    held.lock();
  }
  const bool woken = changed_.wait_until(held, shutdown_, deadline, signalled);
  held.release();  // the caller's lock, as it was found
  return woken && !shutdown_.stop_requested();
}

void PosixCondition::workUntil(const std::function<bool()>& signalled, SteadyTime deadline) {
  const std::stop_callback wakeAtShutdown(shutdown_, [this] { work_->wake(); });
  ++working_;
  work_->workUntil([&] { return signalled() || shutdown_.stop_requested(); }, deadline);
  --working_;
}

void PosixCondition::signal() {
  ++signals_;
  changed_.notify_all();
  if (working_ != 0) {
    work_->wake();
  }
}

}  // namespace orlix
