// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXActivationViewController.h"

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/onboarding/CountryCellCodes.h"
#include "orlixkit/onboarding/Msisdn.h"
#include "orlixkit/onboarding/OMCountryCodeViewController.h"
#include "orlixkit/onboarding/ScreenSetUp.h"
#include "orlixkit/onboarding/SecondAttempt.h"
#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/ui/Containers.h"

namespace orlix {

namespace {

constexpr const char* kTermsSentence =
    "By clicking on proceed you accept the Orlix terms and conditions found <a href=''>here</a>";

}  // namespace

OXActivationViewController::OXActivationViewController()
    : countryCodeField_(outlet<TextField>("countryCodeField")),
      msisdnField_(outlet<TextField>("msisdnField")),
      descriptionLabel_(outlet<Label>("descriptionLabel")),
      proceedButton_(button("proceedButton", "PROCEED", "proceedAction")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelAction")) {
  countryCodeField_->setText("27");
  showTermsSentence(*descriptionLabel_, kTermsSentence);
  msisdnField_->setPlaceholder("Mobile number");
  msisdnField_->setKeyboard(Keyboard::phonePad);
  action("proceedAction", [this] { sendMsisdn(); });
  action("cancelAction", [](OXSession& current) { current.returnUserDidCancel(); });
  action("descriptionTapped", [this] { performSegue("TermsAndConditions"); });
  action("DoneClicked", [this] {
    log("Done Clicked.");
    msisdnField_->endEditing();
  });
  descriptionLabel_->onTap = [this] { performAction("descriptionTapped"); };
  static constexpr AlertText kAlerts[] = {{"Warning", "Invalid msisdn number, too short."},
                                          {"Warning", "Invalid msisdn number, too long."},
                                          {"Warning", "Invalid mobile number."},
                                          {"Warning", "Could not send msisdn."}};
  static constexpr const char* kSegues[] = {"CountryCode", "TermsAndConditions", "ActivationCode"};
  declare({.alerts = kAlerts, .segues = kSegues});
}

OXActivationViewController::~OXActivationViewController() {
  countryCodeField_->setDelegate(nullptr);
}

std::shared_ptr<OXActivationViewController> OXActivationViewController::self() {
  return std::static_pointer_cast<OXActivationViewController>(shared_from_this());
}

void OXActivationViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  msisdnField_->setToolbarButton("Done");
  countryCodeField_->setDelegate(this);
  const std::string number = session()->preMSISDN.value_or("");
  if (!number.empty()) {
    msisdnField_->setText(number);
    getCountryCode(number);
  }
}

bool OXActivationViewController::textFieldShouldBeginEditing(TextField&) {
  if (isInUse()) {
    performSegue("CountryCode");
  }
  return false;
}

void OXActivationViewController::prepareForSegue(
    const std::string& name, const std::shared_ptr<ViewController>& destination) {
  transitioningDelegate_ = presentAsCard(*destination);
  if (name != "CountryCode") {
    return;
  }
  auto& picker = dynamic_cast<OMCountryCodeViewController&>(*destination->visibleChild());
  picker.currentCountryCode = countryCodeField_->text();
  picker.authController = self();
}

void OXActivationViewController::changeCountryCode(const std::string& code) {
  countryCodeField_->setText(code);
}

void OXActivationViewController::getCountryCode(const std::string& number) {
  if (const auto code = countryCodeOf(number, loadCountryCellCodes())) {
    countryCodeField_->setText(*code);
  }
}

void OXActivationViewController::sendMsisdn() {
  const std::string number = normalizedMsisdn(countryCodeField_->text(), msisdnField_->text());
  if (number.empty()) {
    return;
  }
  if (number.size() < kShortestMsisdn) {
    OXUtil::showAlertWithTitle("Warning", "Invalid msisdn number, too short.");
    return;
  }
  if (number.size() > kLongestMsisdn) {
    OXUtil::showAlertWithTitle("Warning", "Invalid msisdn number, too long.");
    return;
  }
  log(number);
  session()->activationMsisdn = number;
  if (!OMVello::sharedOMVello().connection()) {
    // Without a client, show the user the same as for a refused number.
    OXUtil::showAlertWithTitle("Warning", "Invalid mobile number.");
    return;
  }
  ask(number);
}

void OXActivationViewController::ask(const std::string& msisdn) {
  showProgress("Please wait...", ProgressMask::gradient);
  send<MTSmsResponse>(
      {.kind = "msisdn",
       .queue = RequestQueue::globalBackground,
       .ask =
           [msisdn](KCVelloConnection& connection) {
             return askTwice([&] { return connection.sendMsisdn(msisdn); });
           },
       .answered = [screen = self()](const MTSmsResponse& response) { screen->answered(response); },
       .failed = [screen =
                      self()] { screen->failed("msisdn", [screen] { screen->sendMsisdn(); }); },
       .alone = true});
}

void OXActivationViewController::answered(const MTSmsResponse& response) {
  if (!hideProgress()) {
    return;
  }
  if (response.status != SmsResponseStatus::success) {
    warn("Could not send msisdn.");
    return;
  }
  performSegue("ActivationCode");
}

}  // namespace orlix
