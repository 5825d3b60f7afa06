// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXWaitingViewController.h"

#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

OXWaitingViewController::OXWaitingViewController() {
  // When the server has something to say about this version of the library: the session start ends
  // with the error, and goes on behind the warning.
  static constexpr AlertText kAlerts[] = {{"Error", "<the server's message>"},
                                          {"Warning", "<the server's message>"}};
  declare({.alerts = kAlerts});
}

void OXWaitingViewController::viewDidLoad() {
  view()->setBackgroundColor({27.0 / 255, 30.0 / 255, 38.0 / 255, 1});
  activityIndicator_->setColor(kWhite);
}

void OXWaitingViewController::viewDidAppear() { OXUtil::checkOrientationHeight(*this); }

}  // namespace orlix
