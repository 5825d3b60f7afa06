// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/PresentationController.h"

#include "orlixkit/ui/Application.h"

namespace orlix {

PresentationController::PresentationController(const std::shared_ptr<ViewController>& presented,
                                               const std::shared_ptr<ViewController>& presenting)
    : containerView_(std::make_shared<View>()), presented_(presented), presenting_(presenting) {
  const std::shared_ptr<Application> application = presented->application();
  const Size screen = application ? application->mainScreenSize() : Size{};
  containerView_->setFrame({0, 0, screen.width, screen.height});
}

Rect PresentationController::frameOfPresentedViewInContainerView() const {
  return containerView_->frame();
}

}  // namespace orlix
