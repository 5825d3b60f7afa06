// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/securecode/Alarm.h"

#include <utility>

#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"

namespace orlix {

Alarm::Alarm(Duration after, Task task) {
  const Ports& ports = Host::current().ports();
  state_->condition = ports.clock->newCondition();
  const SteadyTime at = ports.clock->steadyNow() + after;
  ports.backgroundQueues->global(QualityOfService::high,
                                 [state = state_, at, task = std::move(task)] {
                                   state->condition->lock();
                                   while (!state->off && state->condition->waitUntil(at)) {
                                   }
                                   const bool due = !state->off;
                                   state->condition->unlock();
                                   if (due) {
                                     deliverToMainQueue(task);
                                   }
                                 });
}

Alarm::~Alarm() {
  state_->condition->lock();
  state_->off = true;
  state_->condition->unlock();
  state_->condition->signal();
}

}  // namespace orlix
