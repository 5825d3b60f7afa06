// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Removes everything that `controller` presents, alerts included, then runs `then` synchronously.
/// Also removes what the completion of an earlier dismissal presents meanwhile. Stops without
/// running `then` when the flow is over, because what is presented then belongs to the next flow.
/// Main thread.
void cutPresented(const std::shared_ptr<OXSession>& session,
                  const std::shared_ptr<ViewController>& controller, const Task& then);

}  // namespace orlix
