// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXWalletManagementViewController.h"

#include <fmt/format.h>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/onboarding/ScreenSetUp.h"

namespace orlix {

OXWalletManagementViewController::OXWalletManagementViewController()
    : cardView_(outlet<View>("cardView")),
      cardImageView_(outlet<ImageView>("cardImageView", cardView_)),
      cardHintView_(outlet<Label>("cardHintView", cardView_)),
      doneButton_(button("doneButton", "DONE", "DoneClicked")) {
  action("cardAction", cardAction);
  action("DoneClicked", [](OXSession& current) { current.returnUserDoneWithWallet(); });
  cardView_->onTap = [this] { performAction("cardAction"); };
}

void OXWalletManagementViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  showSelectedCard();
}

void OXWalletManagementViewController::showSelectedCard() {
  selectedCard_ = OXUtil::getLastUsedCard();
  if (!selectedCard_) {
    cardImageView_->setImageName("other100");
    cardHintView_->setText("Add Card");
    return;
  }
  const CardOption& card = *selectedCard_;
  cardHintView_->setText(fmt::format("xxx-{}", card.cardHint.value_or("")));
  cardImageView_->setImageName(OXUtil::imageForCardType(card.cardType));
  const std::string type = card.validationtype.value_or("(null)");
  log(fmt::format("card.hasValidated: {:d}", card.hasValidated));
  log(fmt::format("card.validated: {:d}", card.validated));
  log(fmt::format("card.validationtype: {}", type));
  if (card.hasValidated && !card.validated && type != "DOB" && type != "SIMPLE") {
    log(fmt::format("Unsupported card validation type {}", type));
  }
}

void OXWalletManagementViewController::sessionDataChanged() { showSelectedCard(); }

void OXWalletManagementViewController::cardAction(OXSession& current) {
  if (current.cards.empty()) {
    current.showAddCardScreen();
  } else {
    current.showCardsScreen();
  }
}

}  // namespace orlix
