// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXActivationCodeViewController.h"

#include <fmt/format.h>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/PurchaseInputs.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/onboarding/ScreenSetUp.h"
#include "orlixkit/onboarding/SecondAttempt.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix {

OXActivationCodeViewController::OXActivationCodeViewController()
    : infoLabel_(outlet<Label>("infoLabel")),
      codeField_(outlet<TextField>("codeField")),
      proceedButton_(button("proceedButton", "PROCEED", "proceedAction")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelAction")) {
  codeField_->setPlaceholder("Activation code");
  codeField_->setKeyboard(Keyboard::numberPad);
  action("proceedAction", [this] { proceedAction(); });
  action("cancelAction", [](OXSession& current) { current.returnUserDidCancel(); });
  action("DoneClicked", [this] {
    log("Done Clicked.");
    codeField_->endEditing();
  });
  static constexpr AlertText kAlerts[] = {{"Warning", "Invalid activation code."},
                                          {"Warning", "Could not activate."}};
  static constexpr const char* kSegues[] = {"Product"};
  declare({.alerts = kAlerts, .segues = kSegues});
}

void OXActivationCodeViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  const auto current = session();
  infoLabel_->setText(fmt::format("A text message has been sent to {}",
                                  current ? current->activationMsisdn : std::string()));
  codeField_->setToolbarButton("Done");
}

void OXActivationCodeViewController::proceedAction() {
  showProgress("Please wait...", ProgressMask::gradient);
  const auto screen = std::static_pointer_cast<OXActivationCodeViewController>(shared_from_this());
  send<std::int32_t>(
      {.kind = "activate",
       .queue = RequestQueue::globalBackground,
       .ask =
           [code = codeField_->text()](KCVelloConnection& connection) {
             return askTwice([&] { return connection.processActivationCode(code); });
           },
       .answered = [screen](std::int32_t status) { screen->answered(status); },
       // The alert hides the indicator, so that touches stay masked until the alert is shown.
       .failed =
           [screen] { screen->offerRetry("activate", [screen] { screen->proceedAction(); }); },
       .alone = true});
}

void OXActivationCodeViewController::answered(std::int32_t status) {
  if (!hideProgress()) {
    return;
  }
  if (status == 1) {
    warn("Invalid activation code.");
    return;
  }
  if (status == 3) {
    warn("Could not activate.");
    return;
  }
  // Any other status is a success: only the two known refusals keep the user on this screen.
  // Both paths run: the payment screen is shown at once, still without the code's data, and is
  // replaced when the facade, notified of the session, has looked the code up.
  OMVello::sharedOMVello().velloSessionEstablished();
  performSegue("Product");
}

/// Sets the payment screen up as the session does when it shows it.
void OXActivationCodeViewController::prepareForSegue(
    const std::string&, const std::shared_ptr<ViewController>& destination) {
  transitioningDelegate_ = presentAsCard(*destination);
  dynamic_cast<PurchaseInputs&>(*destination).system = session()->system;
}

}  // namespace orlix
