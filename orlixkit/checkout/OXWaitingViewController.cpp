// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXWaitingViewController.h"

#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

void OXWaitingViewController::viewDidLoad() {
  view()->setBackgroundColor({27.0 / 255, 30.0 / 255, 38.0 / 255, 1});
  activityIndicator_->setColor(kWhite);
}

void OXWaitingViewController::viewDidAppear() { OXUtil::checkOrientationHeight(*this); }

}  // namespace orlix
