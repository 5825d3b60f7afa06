#pragma once

#include <memory>
#include <optional>

#include "orlixkit/platform/Clock.h"
#include "orlixkit/protocol/Flow.h"
#include "orlixkit/records/Failures.h"

namespace orlix {

/// Ends a request whose scope is over. The caller offers no retry: either its flow is over, or it
/// knows the deadline that it has set.
class RequestEnded : public NetworkException {};

/// What a request belongs to. It is asked before each send and re-send and before what the answer
/// brings is stored: money must not move, and no credential be kept, for a flow that is over.
struct RequestScope {
  /// None for a request outside any flow.
  std::shared_ptr<const Flow> flow{};
  /// Nothing is sent from then on. An exchange under way keeps the transport's own limit.
  std::optional<SteadyTime> deadline{};

  bool isOver() const;
  /// Throws RequestEnded when the scope is over.
  void check() const;
  /// Blocks the calling background thread, at most up to the deadline.
  void pause(Duration duration) const;
};

}  // namespace orlix
