// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXProductViewController.h"

#include <algorithm>

#include <fmt/format.h>

#include "orlixkit/checkout/AmountEntry.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/protocol/LocationUtil.h"

namespace orlix {

namespace {

constexpr Color kBackground{27.0 / 255, 30.0 / 255, 38.0 / 255, 1};
constexpr Color kCardArea{116.0 / 255, 116.0 / 255, 116.0 / 255, 1};
constexpr std::size_t kShortestPin = 4;
const std::string kDefaultTitle = "PROCEED";

}  // namespace

OXProductViewController::OXProductViewController()
    : Payment(*this, "Making Payment...", RequestQueue::newOperationQueue) {
  giveDefaults();
  action("proceedAction", [this](OXSession& current) { proceedAction(current); });
  action("cancelAction", [](OXSession& current) { current.returnUserDidCancel(); });
  action("cardAction", [this](OXSession& current) { cardAction(current); });
  proceedButton_->onTouchUpInside = [this] { performAction("proceedAction"); };
  cardView_->onTap = [this] { performAction("cardAction"); };
  static constexpr AlertText kAlerts[] = {{"Warning", "Enter a valid amount"},
                                          {"Warning", "Enter a valid CVV"},
                                          {"Warning", "Enter ATM PIN"}};
  static constexpr const char* kSegues[] = {"AddCard"};
  static constexpr HidingRule kHiding[] = {
      {"amountView", "the user gives the amount"},
      {"amountGroupView", "the code fixes the amount"},
      {"cvvGroupView", "there is no card, or it needs no CVV or must be unlocked first"},
      {"pinGroupView", "there is no card, or it pays without PIN or must be unlocked first"},
      {"testWarningLabel", "the payment is on the live system"}};
  declare({.alerts = kAlerts, .segues = kSegues, .hiding = kHiding});
}

void OXProductViewController::giveDefaults() {
  currencyLabel_->setText("ZAR");
  cardViewDropdown_->setImageName("dropdown");
  testWarningLabel_->setText("TEST SYSTEM: no money will be taken");
  proceedButton_->setTitle(kDefaultTitle);
  inputAmountField_->setPlaceholder("Amount");
  inputAmountField_->setKeyboard(Keyboard::numberPad);
  cvvField_->setPlaceholder("CVV");
  cvvField_->setKeyboard(Keyboard::numberPad);
  cvvField_->setSecure(true);
  cvvInfoLabel_->setText("The 3 or 4 digits printed on the card");
  pinField_->setPlaceholder("ATM PIN");
  pinField_->setKeyboard(Keyboard::numberPad);
  pinField_->setSecure(true);
}

std::shared_ptr<OXProductViewController> OXProductViewController::self() {
  return std::static_pointer_cast<OXProductViewController>(shared_from_this());
}

void OXProductViewController::viewDidLoad() {
  view()->setBackgroundColor(kBackground);
  cardView_->setBackgroundColor(kCardArea);
  OXUtil::styleButtonsForView(view());
  showSelectedCard();
  showMerchant();
  showAmount();
  testWarningLabel_->setHidden(system == 0);
  LocationUtil::sharedLocationUtil().startLocationDetection();
  setCurrencyLabel();
}

void OXProductViewController::viewDidAppear() { OXUtil::checkOrientationHeight(*this); }

bool OXProductViewController::isInputableAmount() const { return !fixesAmount(codeInfo); }

void OXProductViewController::showAmount() {
  const bool inputable = isInputableAmount();
  amountGroupView_->setSubviewsHidden(!inputable);
  amountView_->setHidden(inputable);
  if (!inputable) {
    amountView_->setText(*codeInfo->amountString);
    return;
  }
  inputAmountField_->setDelegate(this);
  std::optional<std::string> amount = codeInfo ? codeInfo->amount : std::nullopt;
  if (const auto current = session()) {
    amount = current->tempAmountInput ? current->tempAmountInput
             : current->inAmount      ? current->inAmount
                                      : amount;
  }
  inputAmountField_->setText(amount && !amount->empty() ? *amount : "0.00");
}

/// The merchant's and the card's side of the screen. What the user has typed stays, unless it was
/// meant for another card or another kind of amount.
void OXProductViewController::sessionDataChanged() {
  const std::optional<CardOption> formerCard = selectedCard_;
  const std::string typed = inputAmountField_->text();
  const bool keepsAmount = isInputableAmount() && !amountGroupIsHidden();
  needToUnlockCard_ = false;
  paymentMethod_ = CardOptionMethod::notSet;
  proceedButton_->setTitle(kDefaultTitle);
  showSelectedCard();
  const bool sameCard = formerCard && selectedCard_ && formerCard->cardId == selectedCard_->cardId;
  if (!sameCard) {
    clearSecrets();
  }
  showMerchant();
  showAmount();
  if (keepsAmount && !typed.empty()) {
    inputAmountField_->setText(typed);
  }
  setCurrencyLabel();
}

void OXProductViewController::clearSecrets() {
  cvvField_->setText("");
  pinField_->setText("");
}

void OXProductViewController::showMerchant() {
  merchantView_->setText(codeInfo ? codeInfo->merchantName.value_or("") : "");
}

bool OXProductViewController::amountGroupIsHidden() const { return inputAmountField_->hidden(); }

void OXProductViewController::setCurrencyLabel() {
  if (codeInfo && codeInfo->hasCurrency) {
    currencyLabel_->setText(codeInfo->currency.value_or(""));
  }
}

void OXProductViewController::showSelectedCard() {
  selectedCard_ = OXUtil::getLastUsedCard();
  if (!selectedCard_) {
    showNoCard();
    return;
  }
  const CardOption& card = *selectedCard_;
  cardHintView_->setText("xxx-" + card.cardHint.value_or(""));
  cardImageView_->setImageName(OXUtil::imageForCardType(card.cardType));
  log(fmt::format("card.hasValidated: {:d}", card.hasValidated));
  log(fmt::format("card.validated: {:d}", card.validated));
  log("card.validationtype: " + card.validationtype.value_or("(null)"));
  if (mustValidateSelectedCard()) {
    showUnvalidatedCard(card);
    return;
  }
  showPayButton();
  paymentMethod_ = card.method;
  hidePinField(paymentMethod_ != CardOptionMethod::amt);
  showCvvFieldIfNeededForCard(card);
}

void OXProductViewController::showNoCard() {
  cardImageView_->setImageName("other100");
  cardHintView_->setText("Add Card");
  hideCvvField(true);
  hidePinField(true);
}

void OXProductViewController::showUnvalidatedCard(const CardOption& card) {
  const std::string type = card.validationtype.value_or("(null)");
  if (type == "DOB" || type == "SIMPLE") {
    showUnlockButton();
    hidePinField(true);
    hideCvvField(true);
  } else if (type == "3DS") {
    showPayButton();
    paymentMethod_ = CardOptionMethod::secureCode;
    hidePinField(true);
    showCvvFieldIfNeededForCard(card);
  } else {
    log("Unsupported card validation type " + type);
  }
}

bool OXProductViewController::mustValidateSelectedCard() const {
  return selectedCard_->hasValidated && !selectedCard_->validated;
}

void OXProductViewController::showCvvFieldIfNeededForCard(const CardOption& card) {
  hideCvvField(!card.needCvv);
}

void OXProductViewController::hidePinField(bool hidden) {
  pinGroupView_->setSubviewsHidden(hidden);
}

void OXProductViewController::hideCvvField(bool hidden) {
  cvvGroupView_->setSubviewsHidden(hidden);
}

void OXProductViewController::showUnlockButton() {
  proceedButton_->setTitle("UNLOCK");
  needToUnlockCard_ = true;
}

void OXProductViewController::showPayButton() {
  proceedButton_->setTitle("PAY");
  needToUnlockCard_ = false;
}

bool OXProductViewController::textFieldShouldChangeCharacters(TextField& field, TextRange,
                                                              const std::string& replacement) {
  if (&field != inputAmountField_.get() || field.keyboard() != Keyboard::numberPad) {
    return true;
  }
  field.setText(AmountEntry::textAfter(field.text(), replacement));
  return false;
}

void OXProductViewController::cardAction(OXSession& current) {
  if (current.isPaying()) {
    return;
  }
  if (current.cards.empty()) {
    current.showAddCardScreen();
    return;
  }
  current.tempAmountInput = inputAmountField_->text();
  current.showCardsScreen();
}

void OXProductViewController::proceedAction(OXSession& current) {
  if (current.isPaying()) {
    return;
  }
  if (needToUnlockCard_) {
    current.showCardValidationScreen();
    return;
  }
  if (!amountIsAcceptable()) {
    warn("Enter a valid amount");
    return;
  }
  if (!cvvIsAcceptable()) {
    warn("Enter a valid CVV");
    return;
  }
  // Before the method is looked at: a card on which nothing can be done counts as chosen as well,
  // and 0 means no card.
  OXUtil::setLastUsedCardId(selectedCard_ ? selectedCard_->cardId : 0);
  switch (paymentMethod_) {
    case CardOptionMethod::secureCode:
      payBySecureCode(current);
      break;
    case CardOptionMethod::amt:
      payWithPin(current);
      break;
    case CardOptionMethod::cnp:
      payWithoutPin(current);
      break;
    default:
      break;
  }
}

bool OXProductViewController::amountIsAcceptable() const {
  const std::string amount = inputAmountField_->text();
  return !isInputableAmount() || (!amount.empty() && amount != "0.00" && amount != "0");
}

bool OXProductViewController::cvvIsAcceptable() const {
  const std::size_t length = cvvField_->textLength();
  return !selectedCard_ || !selectedCard_->needCvv || length == 3 || length == 4;
}

std::optional<std::string> OXProductViewController::amountToPay() const {
  if (!isInputableAmount()) {
    return codeInfo->amount;
  }
  std::string amount = inputAmountField_->text();
  std::replace(amount.begin(), amount.end(), ',', '.');
  return amount;
}

void OXProductViewController::payBySecureCode(OXSession& session) {
  session.beginPayment();
  if (!mustValidateSelectedCard()) {
    initSessionForSecureCodeScreen(session);
    return;
  }
  // The card that is shown. The stored one may be another: a full disk keeps the former choice.
  session.cardId = selectedCard_->cardId;
  session.cvv = cvvField_->secretText();
  session.mustValidateCard = true;
  // The server authenticates the card on an amount of its own; this one is never charged.
  session.amount = "1.0";
  session.delegate3DSecure = self();
  session.show3DAuthSecureCodeScreen();
}

void OXProductViewController::auth3DsValidated() {
  const auto screen = self();  // the session may hold the last reference
  if (const auto current = session()) {
    initSessionForSecureCodeScreen(*current);
    current->delegate3DSecure.reset();
  }
  clearSecrets();
}

void OXProductViewController::initSessionForSecureCodeScreen(OXSession& current) {
  current.cardId = selectedCard_->cardId;
  current.cvv = cvvField_->secretText();
  current.mustValidateCard = mustValidateSelectedCard();
  current.amount = amountToPay();
  current.showSecureCodeScreen();
}

PurchaseRequest OXProductViewController::newPurchaseRequest() const {
  PurchaseRequest request;
  if (selectedCard_->needCvv) {
    request.cvv = cvvField_->secretText();
  }
  request.code = codeInfo ? codeInfo->code : std::nullopt;
  request.amount = amountToPay();
  request.cardId = selectedCard_->cardId;
  request.location = OXUtil::getLocation();
  return request;
}

void OXProductViewController::payWithPin(OXSession& current) {
  if (pinField_->textLength() < kShortestPin) {
    warn("Enter ATM PIN");
    return;
  }
  current.beginPayment();
  purchaseRequest_ = newPurchaseRequest();
  purchaseRequest_.extraRefValue = "";
  makeAmtPayment();
}

void OXProductViewController::payWithoutPin(OXSession& current) {
  current.beginPayment();
  purchaseRequest_ = newPurchaseRequest();
  makeCnpPayment();
}

void OXProductViewController::makeAmtPayment() {
  pay([request = purchaseRequest_, pin = pinField_->secretText()](
          KCVelloConnection& connection) { return connection.purchaseAMT(request, pin); },
      [screen = self()] { screen->makeAmtPayment(); });
}

void OXProductViewController::makeCnpPayment() {
  pay([request = purchaseRequest_](
          KCVelloConnection& connection) { return connection.puchaseCNP(request); },
      [screen = self()] { screen->makeCnpPayment(); });
}

void OXProductViewController::receiptTimedOut() {
  offerRetryOf([screen = self()] { screen->pollForReceipt(); });
}

/// However the alert goes without a retry: the user may pay again, or leave.
ConnectionAlert OXProductViewController::failureAlert() {
  return {.cancel = [screen = self()] {
    if (const auto current = screen->session()) {
      current->endPayment();
    }
  }};
}

void OXProductViewController::prepareForSegue(const std::string& name,
                                              const std::shared_ptr<ViewController>& destination) {
  if (name == "AddCard") {
    transitioningDelegate_ = presentAsCard(*destination);
  }
}

}  // namespace orlix
