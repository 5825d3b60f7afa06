// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "examples/shop/Outcomes.h"
#include "orlixkit/checkout/PurchaseStatus.h"

namespace orlix::shop {

/// How a visit to the wallet ended, in words for the shop's user.
struct Notice {
  enum class Tone { good, bad, neutral };

  std::string title;
  std::string detail;  ///< what happened and what to do next
  Tone tone = Tone::neutral;
};

/// What the shop knows at the end of a visit.
struct VisitEnd {
  /// What stopped the visit before the wallet's first screen.
  enum class Obstacle { none, noSession, versionStopped };

  std::optional<Outcome> outcome;  ///< none: no callback came
  std::string code;                ///< what was to be paid for; empty: nothing
  PurchaseStatus purchase;
  Obstacle obstacle = Obstacle::none;
};

/// Says "Nothing was taken" only where that is certain.
Notice noticeFor(const VisitEnd& end);

}  // namespace orlix::shop
