// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXMsisdnRelinkViewController.h"

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/onboarding/CardLinked.h"
#include "orlixkit/onboarding/ScreenSetUp.h"

namespace orlix {

OXMsisdnRelinkViewController::OXMsisdnRelinkViewController()
    : infoLabel_(outlet<Label>("infoLabel")),
      msisdnField_(outlet<TextField>("msisdnField")),
      proceedButton_(button("proceedButton", "PROCEED", "proceedAction")),
      backButton_(button("backButton", "BACK", "back")) {
  infoLabel_->setText("Please confirm the mobile number that is linked to this card.");
  msisdnField_->setPlaceholder("Mobile number");
  msisdnField_->setKeyboard(Keyboard::phonePad);
  action("proceedAction", [this] { proceedAction(); });
  action("back", [](OXSession& current) { current.showAddCardScreen(); });
  static constexpr AlertText kAlerts[] = {
      {"Warning", "It seems this mobile number is incorrect"},
      {"Warning", "There seems to be some problem adding this card"}};
  declare({.alerts = kAlerts});
}

void OXMsisdnRelinkViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
}

void OXMsisdnRelinkViewController::proceedAction() {
  const std::shared_ptr<OXSession> current = session();
  if (!current->cardInfoResponse) {
    current->cardInfoResponse = std::make_shared<CardInfoResponse>();
  }
  current->cardInfoResponse->linkedMsisdn = msisdnField_->text();
  // A copy, since the request modifies its record while the user may press proceed again.
  CardInfoResponse card = *current->cardInfoResponse;
  showProgress("Please wait...");
  const auto screen = std::static_pointer_cast<OXMsisdnRelinkViewController>(shared_from_this());
  send<MTCardResponse>(
      {.kind = "link",
       .queue = RequestQueue::globalBackground,
       .ask = [card](KCVelloConnection& connection) mutable { return connection.linkCard(card); },
       .answered = [screen](const MTCardResponse& response) { screen->answered(response); },
       .failed = [screen] { screen->failed("link", [screen] { screen->proceedAction(); }); },
       // The wallet may contain the card by now; the stored choice was made without it.
       .answeredLate = [] { OXOrlix::reloadData(); }});
}

void OXMsisdnRelinkViewController::answered(const MTCardResponse& response) {
  if (!hideProgress()) {
    return;
  }
  if (response.status == CardResponseStatus::success) {
    // The last card: the server appends the confirmed one. (OXAddCardViewController uses the
    // first.)
    cardLinked(*session(), response, [](const auto& cards) { return cards.back(); });
  } else if (response.status == CardResponseStatus::failed) {
    warn("It seems this mobile number is incorrect");
  } else if (response.status == CardResponseStatus::relink) {
    warn("There seems to be some problem adding this card");
  }
}

}  // namespace orlix
