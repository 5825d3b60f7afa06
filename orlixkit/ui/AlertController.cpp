// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/AlertController.h"

#include <utility>

namespace orlix {

AlertController::AlertController(std::string title, std::string message)
    : title_(std::move(title)), message_(std::move(message)) {}

void AlertController::press(std::size_t index) {
  const std::shared_ptr<ViewController> presenter = presentingViewController();
  if (!presenter || isBeingDismissed() || index >= actions_.size()) {
    return;
  }
  pressed_ = actions_[index].handler;
  try {
    presenter->dismiss(true);
  } catch (...) {
    if (!isBeingDismissed()) {
      pressed_.reset();
    }
    throw;
  }
}

void AlertController::withdraw() {
  // Held meanwhile: what it is taken from may own the last reference.
  const std::shared_ptr<ViewController> self = shared_from_this();
  withdrawn_ = true;
  leaveAlone();
}

void AlertController::hasGone() {
  const std::optional<Task> pressed = std::exchange(pressed_, std::nullopt);
  const Task lost = std::exchange(onLost, {});
  if (withdrawn_) {
    return;
  }
  if (const Task& next = pressed ? *pressed : lost) {
    next();
  }
}

}  // namespace orlix
