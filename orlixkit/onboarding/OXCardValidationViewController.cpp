// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXCardValidationViewController.h"

#include <fmt/format.h>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/onboarding/CardDates.h"
#include "orlixkit/onboarding/ScreenSetUp.h"

namespace orlix {

OXCardValidationViewController::OXCardValidationViewController()
    : infoLabel_(outlet<Label>("infoLabel")),
      dobGroupView_(outlet<View>("dobGroupView")),
      dateOfBirthLabel_(outlet<Label>("dateOfBirthLabel", dobGroupView_)),
      dateOfBirthField_(outlet<FormattedTextField>("dateOfBirthField", dobGroupView_)),
      proceedButton_(button("proceedButton", "PROCEED", "proceedAction")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelAction")) {
  dateOfBirthLabel_->setText("Date of birth");
  dateOfBirthField_->setPlaceholder("DD/MM/YYYY");
  action("proceedAction", [this] { proceedAction(); });
  action("cancelAction", [](OXSession& current) { current.showPurchaseScreen(); });
  static constexpr AlertText kAlerts[] = {
      {"Warning", "Enter a valid date of birth DD/MM/YYY"},
      {"Warning", "YOUR DATE OF BIRTH WAS NOT CORRECT. YOUR CARD HAS BEEN REMOVED.", "Cancel"}};
  static constexpr HidingRule kHiding[] = {
      {"dobGroupView", "the card is unlocked without a date of birth"}};
  declare({.alerts = kAlerts, .hiding = kHiding});
}

void OXCardValidationViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  dateOfBirthField_->setPattern("XX/XX/XXXX");
  card_ = OXUtil::getLastUsedCard().value_or(CardOption{});
  needsDob_ = card_.validationtype == "DOB";
  dobGroupView_->setHidden(!needsDob_);
  infoLabel_->setText(fmt::format("CONFIRM THAT YOU ARE THE OWNER OF THIS CARD ENDING IN {}?",
                                  card_.cardHint.value_or("")));
}

std::optional<std::string> OXCardValidationViewController::formatDobForBackend(
    std::string_view text) {
  return dateOfBirthFromYear(text, "-");
}

void OXCardValidationViewController::proceedAction() {
  if (!needsDob_) {
    unlockCardWithDateOfBirth("");
    return;
  }
  const std::optional<std::string> dateOfBirth = formatDobForBackend(dateOfBirthField_->text());
  if (!dateOfBirth) {
    // Three Y's: kept, since manuals of host applications quote the sentence.
    warn("Enter a valid date of birth DD/MM/YYY");
    return;
  }
  unlockCardWithDateOfBirth(*dateOfBirth);
}

void OXCardValidationViewController::unlockCardWithDateOfBirth(const std::string& dateOfBirth) {
  showProgress("Please wait...");
  const auto screen = std::static_pointer_cast<OXCardValidationViewController>(shared_from_this());
  send<MTCardValidateResponse>(
      {.kind = "validate",
       .queue = RequestQueue::globalBackground,
       .ask =
           [cardId = card_.cardId, dateOfBirth](KCVelloConnection& connection) {
             return connection.validateCard(true, cardId, dateOfBirth);
           },
       .answered = [screen](const MTCardValidateResponse& response) { screen->answered(response); },
       .failed =
           [screen, dateOfBirth] {
             screen->failed("validate", [screen, dateOfBirth] {
               screen->unlockCardWithDateOfBirth(dateOfBirth);
             });
           },
       .answeredLate = [] { OXOrlix::reloadData(); }});
}

void OXCardValidationViewController::answered(const MTCardValidateResponse& response) {
  if (!hideProgress()) {
    return;
  }
  // Success is recognised by this exact sentence: the server provides no other sign.
  if (response.message == "Your card has been added") {
    OXOrlix::loadCodeInfo(nullptr);
    session()->showPurchaseScreen();
    return;
  }
  if (!isInUse()) {  // left meanwhile: only the list of cards is brought up to date
    OXOrlix::reloadData();
    return;
  }
  const auto alert = std::make_shared<AlertController>(
      "Warning", "YOUR DATE OF BIRTH WAS NOT CORRECT. YOUR CARD HAS BEEN REMOVED.");
  alert->addAction({"Cancel", AlertActionStyle::cancel, [] { OXOrlix::loadCodeInfo(nullptr); }});
  OXUtil::showAlert(alert);
}

}  // namespace orlix
