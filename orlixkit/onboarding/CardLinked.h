// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <vector>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/records/MTCardResponse.h"

namespace orlix {

/// Continues the flow after a card has been linked: makes that one of the wallet's cards that
/// `chosen` returns the last used card, none when the answer has no list, and ends a
/// pre-registration or loads the first screen again.
void cardLinked(OXSession& session, const MTCardResponse& response,
                const std::function<CardOption(const std::vector<CardOption>&)>& chosen);

}  // namespace orlix
