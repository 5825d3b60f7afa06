// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXAddCardViewController.h"

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/onboarding/CardDates.h"
#include "orlixkit/onboarding/CardLinked.h"
#include "orlixkit/onboarding/ScreenSetUp.h"
#include "orlixkit/ports/Utf8.h"

namespace orlix {

namespace {

std::size_t lengthOf(std::string_view text) { return charactersOf(text).size(); }

}  // namespace

OXAddCardViewController::OXAddCardViewController()
    : cardNumberField_(outlet<CardNumberField>("cardNumberField")),
      cardHolderField_(outlet<TextField>("cardHolderField")),
      expiryDateGroupView_(outlet<View>("expiryDateGroupView")),
      expiryDateLabel_(outlet<Label>("expiryDateLabel", expiryDateGroupView_)),
      expiryDateField_(outlet<FormattedTextField>("expiryDateField", expiryDateGroupView_)),
      dateOfBirthGroupView_(outlet<View>("dateOfBirthGroupView")),
      dateOfBirthLabel_(outlet<Label>("dateOfBirthLabel", dateOfBirthGroupView_)),
      dateOfBirthField_(outlet<FormattedTextField>("dateOfBirthField", dateOfBirthGroupView_)),
      cardAccountGroupView_(outlet<View>("cardAccountGroupView")),
      cardAccountLabel_(outlet<Label>("cardAccountLabel", cardAccountGroupView_)),
      cardAccountField_(outlet<TextField>("cardAccountField", cardAccountGroupView_)),
      proceedButton_(button("proceedButton", "PROCEED", "proceedAction")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelAction")) {
  cardNumberField_->setPlaceholder("Card number");
  cardHolderField_->setPlaceholder("Name on card");
  expiryDateLabel_->setText("Expiry date");
  expiryDateField_->setPlaceholder("MM/YY");
  dateOfBirthLabel_->setText("Date of birth");
  dateOfBirthField_->setPlaceholder("DD/MM/YYYY");
  cardAccountLabel_->setText("Account");
  cardAccountField_->setPlaceholder("Select an account");
  action("proceedAction", [this] { proceedAction(); });
  action("cancelAction", cancelAction);
  static constexpr AlertText kAlerts[] = {
      {"Warning", "Invalid card number"},
      {"Warning", "Invalid card holder name"},
      {"Warning", "This bank card is not supported"},
      {"Warning", "Invalid expiry date"},
      {"Warning", "Enter a valid date of birth DD/MM/YYYY"},
      {"Warning", "Please select an account."},
      {"Warning", "There seems to be some problem adding this card"}};
  static constexpr HidingRule kHiding[] = {
      {"cardAccountGroupView", "the card's issuer has not asked for an account"}};
  declare({.alerts = kAlerts, .hiding = kHiding});
}

std::shared_ptr<OXAddCardViewController> OXAddCardViewController::self() {
  return std::static_pointer_cast<OXAddCardViewController>(shared_from_this());
}

void OXAddCardViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  expiryDateField_->setPattern("XX/XX");
  dateOfBirthField_->setPattern("XX/XX/XXXX");
  cardAccountGroupView_->setSubviewsHidden(true);
}

void OXAddCardViewController::viewDidAppear() {
  OrlixViewController::viewDidAppear();
  populateCardAccountPicker();
}

void OXAddCardViewController::populateCardAccountPicker() {
  cardAccountPicker_ = DropDownPicker::attach(cardAccountField_, {"Savings", "Current", "Credit"});
}

bool OXAddCardViewController::isValidLuhn(std::string_view cardNumber) {
  return lengthOf(cardNumber) >= 16;
}

bool OXAddCardViewController::isValidExpiryDate(std::string_view monthAndYear) {
  return isExpiryDateValid(monthAndYear, currentMonth());
}

bool OXAddCardViewController::isValidDateOfBirth(std::string_view dateOfBirth) {
  return lengthOf(dateOfBirth) == 10;
}

/// Ends the request and keeps the form.
void OXAddCardViewController::refuse(const std::string& message) {
  if (hideProgress()) {
    warn(message);
  }
}

void OXAddCardViewController::proceedAction() {
  cardNumber_ = cardNumberField_->number();
  if (!isValidLuhn(cardNumber_.text()) && lengthOf(cardNumber_.text()) < 14) {
    warn("Invalid card number");
    return;
  }
  cardHolder_ = cardHolderField_->text();
  if (lengthOf(cardHolder_) <= 2) {
    warn("Invalid card holder name");
    return;
  }
  expiryDate_ = expiryDateField_->text();
  dateOfBirth_ = dateOfBirthField_->text();
  checkCard();
}

void OXAddCardViewController::checkCard() {
  showProgress("Loading...", ProgressMask::none, ProgressStyle::information);
  send<MTBinInfo>(
      {.kind = "bin",
       .ask = [number = cardNumber_](
                  KCVelloConnection& connection) { return connection.getBinInfo(number.text()); },
       .answered = [screen = self()](const MTBinInfo& info) { screen->lookedUp(info); },
       .failed = [screen = self()] { screen->failed("bin", [screen] { screen->checkCard(); }); },
       .latestCounts = true});
}

void OXAddCardViewController::lookedUp(const MTBinInfo& info) {
  binInfo_ = info;
  if (!binInfo_.cardSupported) {
    refuse("This bank card is not supported");
    return;
  }
  const auto card = std::make_shared<CardInfoResponse>();
  if (!takeExpiryDate(*card) || !takeDateOfBirth(*card)) {
    return;
  }
  if (binInfo_.needCardHolderName) {
    card->cardHolderName = cardHolder_;
  }
  if (!takeAccount(*card)) {
    return;
  }
  card->cardNumber = cardNumber_;
  card->location = OXUtil::getLocation();
  linkCard(card);
}

bool OXAddCardViewController::takeExpiryDate(CardInfoResponse& card) {
  if (!binInfo_.needExp) {
    return true;
  }
  const std::optional<ExpiryDate> date = splitExpiryDate(expiryDate_);
  if (!date || !isValidExpiryDate(expiryDate_)) {
    refuse("Invalid expiry date");
    return false;
  }
  card.expiryDateMonth = date->month;
  card.expiryDateYear = date->year;
  return true;
}

bool OXAddCardViewController::takeDateOfBirth(CardInfoResponse& card) {
  if (!binInfo_.needDob) {
    return true;
  }
  const std::optional<std::string> formatted = dateOfBirthFromYear(dateOfBirth_, "");
  if (!formatted || !isValidDateOfBirth(dateOfBirth_)) {
    refuse("Enter a valid date of birth DD/MM/YYYY");
    return false;
  }
  dateOfBirthFormatted_ = *formatted;
  card.dateOfBirth = dateOfBirthFormatted_;
  return true;
}

bool OXAddCardViewController::takeAccount(CardInfoResponse& card) {
  if (!binInfo_.needAccount) {
    return true;
  }
  if (cardAccountGroupView_->subviews().front()->hidden()) {
    // Without an alert: the appearing row shows what is missing. The next proceed checks all values
    // again.
    cardAccountGroupView_->setSubviewsHidden(false);
    static_cast<void>(hideProgress());
    return false;
  }
  if (cardAccountField_->text().empty()) {
    refuse("Please select an account.");
    return false;
  }
  card.account = cardAccountField_->text();
  return true;
}

void OXAddCardViewController::linkCard(const std::shared_ptr<CardInfoResponse>& card) {
  send<MTCardResponse>(
      {.kind = "link",
       .ask = [card](KCVelloConnection& connection) { return connection.linkCard(*card); },
       .answered = [screen = self(),
                    card](const MTCardResponse& response) { screen->answered(response, card); },
       .failed = [screen = self(),
                  card] { screen->failed("link", [screen, card] { screen->linkCard(card); }); },
       // The wallet may contain the card by now; the stored choice was made without it.
       .answeredLate = [] { OXOrlix::reloadData(); }});
}

void OXAddCardViewController::answered(const MTCardResponse& response,
                                       const std::shared_ptr<CardInfoResponse>& card) {
  if (response.status == CardResponseStatus::success) {
    if (hideProgress()) {
      // The first card. (OXMsisdnRelinkViewController uses the last one.)
      cardLinked(*session(), response, [](const auto& cards) { return cards.front(); });
    }
  } else if (response.status == CardResponseStatus::failed) {
    refuse("There seems to be some problem adding this card");
  } else if (response.status == CardResponseStatus::relink) {
    if (hideProgress()) {
      session()->cardInfoResponse = card;
      session()->showMsisdnRelinkScreen();
    }
  }
  // An answer with none of the three statuses leaves the indicator shown: the outcome is unknown,
  // and the user should not add the card again by accident.
}

void OXAddCardViewController::cancelAction(OXSession& current) {
  if (current.preRegister) {
    current.returnUserDidCancel();
  } else if (current.walletManagement) {
    current.showWalletManagementScreen();
  } else {
    current.showPurchaseScreen();
  }
}

}  // namespace orlix
