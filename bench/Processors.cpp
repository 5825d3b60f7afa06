// SPDX-License-Identifier: Apache-2.0

#include "bench/Processors.h"

#include <vector>

namespace orlix::bench {

OnOneProcessor::OnOneProcessor(Side side) {
  sched_getaffinity(0, sizeof before_, &before_);
  std::vector<std::size_t> usable;
  for (std::size_t i = 0; i < CPU_SETSIZE; ++i) {
    if (CPU_ISSET(i, &before_)) {
      usable.push_back(i);
    }
  }
  if (usable.size() < 2) {
    return;
  }
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(side == Side::client ? usable.front() : usable.back(), &one);
  sched_setaffinity(0, sizeof one, &one);
}

OnOneProcessor::~OnOneProcessor() { sched_setaffinity(0, sizeof before_, &before_); }

}  // namespace orlix::bench
