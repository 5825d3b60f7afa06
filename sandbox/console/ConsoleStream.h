// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>

#include "sandbox/Shutdown.h"
#include "sandbox/State.h"

namespace orlix::sandbox {

/// The news of one open page, as server-sent events: "requests" with the requests that have
/// changed (the identifier of the event says up to which revision), and "status" with the rest of
/// what every view of the page shows. Thread: one; the state is locked inside. Lifetime: the
/// arguments outlive it.
class ConsoleStream {
 public:
  /// `seen`: the revision that the page knows; 0: none.
  ConsoleStream(State& state, const Shutdown& shutdown, std::int64_t seen)
      : state_(state), shutdown_(shutdown), seen_(seen) {}

  /// Waits for news, a second at most; empty when there are none.
  std::string next();

 private:
  std::string requests();
  std::string status();

  State& state_;
  const Shutdown& shutdown_;
  std::int64_t seen_;
  std::int64_t changes_ = -1;
};

}  // namespace orlix::sandbox
