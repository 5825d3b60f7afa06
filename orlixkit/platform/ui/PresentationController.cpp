#include "orlixkit/platform/ui/PresentationController.h"

#include "orlixkit/platform/Host.h"

namespace orlix {

PresentationController::PresentationController(const std::shared_ptr<ViewController>& presented,
                                               const std::shared_ptr<ViewController>& presenting)
    : containerView_(std::make_shared<View>()), presented_(presented), presenting_(presenting) {
  const Size screen = Host::current().application().mainScreenSize();
  containerView_->setFrame({0, 0, screen.width, screen.height});
}

Rect PresentationController::frameOfPresentedViewInContainerView() const {
  return containerView_->frame();
}

}  // namespace orlix
