// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXTermsAndConditionsChangeViewController.h"

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/onboarding/ScreenSetUp.h"

namespace orlix {

namespace {

// The control character is part of the published sentence; keep it.
constexpr const char* kNewTermsSentence =
    "We have updated our terms and conditions. "
    "\x03"
    "By clicking on proceed you accept the new Orlix terms and conditions found <a "
    "href=''>here</a>";

}  // namespace

OXTermsAndConditionsChangeViewController::OXTermsAndConditionsChangeViewController()
    : descriptionLabel_(outlet<Label>("descriptionLabel")),
      proceedButton_(button("proceedButton", "PROCEED", "proceedAction")),
      declineButton_(button("declineButton", "DECLINE", "declineAction")) {
  showTermsSentence(*descriptionLabel_, kNewTermsSentence);
  action("proceedAction", proceedAction);
  action("declineAction", [](OXSession& current) { current.returnUserDidCancel(); });
  action("descriptionTapped", [this] { performSegue("TermsAndConditions"); });
  descriptionLabel_->onTap = [this] { performAction("descriptionTapped"); };
  static constexpr const char* kSegues[] = {"TermsAndConditions"};
  declare({.segues = kSegues});
}

void OXTermsAndConditionsChangeViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
}

void OXTermsAndConditionsChangeViewController::prepareForSegue(
    const std::string&, const std::shared_ptr<ViewController>& destination) {
  transitioningDelegate_ = presentAsCard(*destination);
}

void OXTermsAndConditionsChangeViewController::proceedAction(OXSession& current) {
  // On this thread, and without reading the answer: the session requests the payment screen in
  // any case, and the next start shows whether the terms count as accepted.
  current.connection().value().updateTC();
  current.showPurchaseScreen();
}

}  // namespace orlix
