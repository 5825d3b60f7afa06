#pragma once

#include <memory>

#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

/// Cuts away whatever `controller` presents, alerts included, then runs `then`, before it returns.
/// What the end of an earlier dismissal puts up meanwhile is cut away as well. Main thread.
void cutPresented(const std::shared_ptr<ViewController>& controller, const Task& then);

}  // namespace orlix
