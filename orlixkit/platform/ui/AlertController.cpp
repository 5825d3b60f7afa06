#include "orlixkit/platform/ui/AlertController.h"

namespace orlix {

AlertController::AlertController(std::string title, std::string message)
    : title_(std::move(title)), message_(std::move(message)) {}

void AlertController::press(std::size_t index) {
  const std::shared_ptr<ViewController> presenter = presentingViewController();
  if (pressed_ || !presenter || isBeingDismissed() || index >= actions_.size()) {
    return;
  }
  pressed_ = true;
  presenter->dismiss(true, actions_[index].handler);
}

}  // namespace orlix
