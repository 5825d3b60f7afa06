// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXTransitioningDelegate.h"

#include "orlixkit/checkout/OXPresentationController.h"

namespace orlix {

std::shared_ptr<PresentationController> OXTransitioningDelegate::presentationControllerFor(
    const std::shared_ptr<ViewController>& presented,
    const std::shared_ptr<ViewController>& presenting, const std::shared_ptr<ViewController>&) {
  return std::make_shared<OXPresentationController>(presented, presenting);
}

std::shared_ptr<OXTransitioningDelegate> presentAsCard(ViewController& screen) {
  auto transition = std::make_shared<OXTransitioningDelegate>();
  screen.transitioningDelegate = transition;
  screen.modalPresentationStyle = ModalPresentationStyle::custom;
  return transition;
}

}  // namespace orlix
