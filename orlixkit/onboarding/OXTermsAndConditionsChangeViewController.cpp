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
  action("proceedAction", [this] { proceedAction(); });
  action("declineAction", [this] { declineAction(); });
  action("descriptionTapped", [this] { descriptionTapped(); });
  descriptionLabel_->onTap = [this] { performAction("descriptionTapped"); };
}

void OXTermsAndConditionsChangeViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  showTermsSentence(*descriptionLabel_, kNewTermsSentence);
}

void OXTermsAndConditionsChangeViewController::descriptionTapped() {
  performSegue("TermsAndConditions");
}

void OXTermsAndConditionsChangeViewController::prepareForSegue(
    const std::string&, const std::shared_ptr<ViewController>& destination) {
  transitioningDelegate_ = presentAsCard(*destination);
}

void OXTermsAndConditionsChangeViewController::proceedAction() {
  const std::shared_ptr<OXSession> former = session();
  if (!former) {
    return;
  }
  if (auto connection = former->connection()) {
    // On this thread, and without reading the answer: the session requests the payment screen in
    // any case, and the next start shows whether the terms count as accepted.
    connection->updateTC();
  }
  if (const auto current = session()) {
    current->showPurchaseScreen();
  }
}

void OXTermsAndConditionsChangeViewController::declineAction() {
  if (const auto current = session()) {
    current->returnUserDidCancel();
  }
}

}  // namespace orlix
