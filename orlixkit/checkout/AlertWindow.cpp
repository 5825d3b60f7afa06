// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/AlertWindow.h"

#include "orlixkit/host/Host.h"
#include "orlixkit/ui/ActiveWindow.h"

namespace orlix {

void AlertWindow::show(const std::shared_ptr<AlertController>& alert, bool animated) {
  MainQueue& mainQueue = *Host::current().ports().mainQueue;
  if (!mainQueue.isCurrent()) {
    mainQueue.async([alert, animated] { show(alert, animated); });
    return;
  }
  Host::current().application().showAlert(alert, animated);
}

std::shared_ptr<Window> AlertWindow::ox_activeApplicationWindow() {
  return activeWindow(Host::current().application());
}

std::shared_ptr<ViewController> AlertWindow::ox_topViewControllerFrom(
    const std::shared_ptr<ViewController>& controller) {
  return topViewControllerFrom(controller);
}

}  // namespace orlix
