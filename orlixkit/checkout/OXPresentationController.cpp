// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXPresentationController.h"

namespace orlix {

OXPresentationController::OXPresentationController(
    const std::shared_ptr<ViewController>& presented,
    const std::shared_ptr<ViewController>& presenting)
    : PresentationController(presented, presenting) {
  prepareDimmingView();
}

void OXPresentationController::prepareDimmingView() {
  dimmingView_ = std::make_shared<View>();
  dimmingView_->setBackgroundColor({0, 0, 0, 0.4});
  dimmingView_->setAlpha(0);
}

void OXPresentationController::presentationTransitionWillBegin() {
  const Rect container = containerView()->frame();
  dimmingView_->setFrame({0, 0, container.width, container.height});
  containerView()->insertSubview(dimmingView_, 0);
  dimmingView_->setAlpha(1);
}

void OXPresentationController::dismissalTransitionWillBegin() { dimmingView_->setAlpha(0); }

Size OXPresentationController::sizeForChildContentContainer(Size) const { return {300, 400}; }

Rect OXPresentationController::frameOfPresentedViewInContainerView() const {
  const Rect container = containerView()->frame();
  const Size size = sizeForChildContentContainer({container.width, container.height});
  return {(container.width - size.width) * 0.5, (container.height - size.height) * 0.5, size.width,
          size.height};
}

}  // namespace orlix
