// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/RequestScope.h"

#include <algorithm>

#include "orlixkit/host/Host.h"

namespace orlix {

bool RequestScope::isOver() const {
  if (flow && !flow->isLive()) {
    return true;
  }
  return deadline && Host::current().ports().clock->steadyNow() >= *deadline;
}

void RequestScope::check() const {
  if (isOver()) {
    throw RequestEnded();
  }
}

void RequestScope::pause(Duration duration) const {
  Clock& clock = *Host::current().ports().clock;
  if (deadline) {
    duration = std::min(duration, *deadline - clock.steadyNow());
  }
  if (duration > Duration::zero()) {
    clock.sleep(duration);
  }
}

}  // namespace orlix
