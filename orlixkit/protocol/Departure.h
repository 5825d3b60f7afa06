// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>

#include "orlixkit/protocol/Flow.h"

namespace orlix {

/// Whether a request has left the device. One request at a time sends by it; any thread reads it.
class Departure {
 public:
  enum class State {
    notSent,    ///< no byte of it has been written
    sent,       ///< it may have reached the server
    turnedAway  ///< the server has refused its session, and so has not acted on it
  };

  State state() const { return state_; }

  /// Call immediately before the request is written; false: it may not be sent any more. The mark
  /// comes before the look at the flow: whoever ends the flow and then reads `notSent` can rely on
  /// it.
  bool leaves(const Flow* flow) {
    const State before = state_.exchange(State::sent);
    if (flow != nullptr && !flow->isLive()) {
      state_ = before;
      return false;
    }
    return true;
  }
  void turnedAway() { state_ = State::turnedAway; }

 private:
  std::atomic<State> state_{State::notSent};
};

}  // namespace orlix
