// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/CheckoutScreens.h"

#include "orlixkit/checkout/OXProductViewController.h"
#include "orlixkit/checkout/OXWaitingViewController.h"

namespace orlix {

void addCheckoutScreens(Storyboard& storyboard) {
  storyboard.add("Waiting", [] { return std::make_shared<OXWaitingViewController>(); });
  storyboard.add("Product", [] { return std::make_shared<OXProductViewController>(); });
}

}  // namespace orlix
