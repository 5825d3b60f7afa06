// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sched.h>

namespace orlix::bench {

/// For its lifetime the thread that made it, and the threads which that one starts meanwhile, run
/// on one processor only. Client and server then have a processor each, as on two machines, and the
/// measurement excludes the time to wake an idle processor. No effect with a single processor.
class OnOneProcessor {
 public:
  enum class Side { client, server };

  explicit OnOneProcessor(Side side);
  ~OnOneProcessor();
  OnOneProcessor(const OnOneProcessor&) = delete;
  OnOneProcessor& operator=(const OnOneProcessor&) = delete;

 private:
  cpu_set_t before_;
};

}  // namespace orlix::bench
