// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Cuts away whatever `controller` presents, alerts included, then runs `then`, before it returns.
/// What the end of an earlier dismissal puts up meanwhile is cut away as well. Stops, and does not
/// run `then`, once the flow is over: what is there now belongs to the next one. Main thread.
void cutPresented(const std::shared_ptr<OXSession>& session,
                  const std::shared_ptr<ViewController>& controller, const Task& then);

}  // namespace orlix
