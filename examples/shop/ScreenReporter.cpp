// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/ScreenReporter.h"

#include <optional>
#include <string>
#include <vector>

#include "orlixkit/ui/AlertController.h"

namespace orlix::shop {

void ScreenReporter::didPresent(const std::shared_ptr<ViewController>& controller) {
  const auto alert = std::dynamic_pointer_cast<AlertController>(controller);
  if (!alert) {
    events_.screen(controller->identifier());
    return;
  }
  std::vector<std::string> buttons;
  for (const AlertAction& action : alert->actions()) {
    buttons.push_back(action.title);
  }
  events_.alert(alert->title(), alert->message(), buttons);
}

void ScreenReporter::progressChanged(const ProgressIndicator& indicator) {
  events_.progress(indicator.visible() ? std::optional(indicator.status()) : std::nullopt);
}

}  // namespace orlix::shop
