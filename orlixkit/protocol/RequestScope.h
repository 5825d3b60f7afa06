// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/protocol/Departure.h"
#include "orlixkit/protocol/Flow.h"
#include "orlixkit/records/Failures.h"

namespace orlix {

/// Thrown by a request whose scope has ended. The caller offers no retry: its flow has ended, or
/// the deadline that it set has passed.
class RequestEnded : public NetworkException {};

/// The flow and deadline of a request. Checked before each send and re-send and before data of the
/// answer is stored: no payment may be made and no credential stored for an ended flow.
struct RequestScope {
  /// Null for a request outside any flow.
  std::shared_ptr<const Flow> flow{};
  /// Nothing is sent after it. An exchange in progress keeps the transport's own time limit.
  std::optional<SteadyTime> deadline{};
  /// Marked by each request of the scope on its way; the opening of a session does not count.
  std::shared_ptr<Departure> departure{};

  bool isOver() const;
  /// Throws RequestEnded when the scope has ended.
  void check() const;
  /// Blocks the calling background thread, at most up to the deadline.
  void pause(Duration duration) const;
};

}  // namespace orlix
