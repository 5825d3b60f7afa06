#pragma once

#include <sched.h>

namespace orlix::bench {

/// For its lifetime the thread that made it, and the threads which that one starts meanwhile, run
/// on one processor only. Client and server so have a processor each, as on two machines, and what
/// is measured is what they do and not how long an idle processor takes to wake up. Does nothing
/// where there is only one.
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
