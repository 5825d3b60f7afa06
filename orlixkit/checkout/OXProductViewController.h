// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/OXDelegates.h"
#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/checkout/Payment.h"
#include "orlixkit/checkout/PurchaseInputs.h"
#include "orlixkit/checkout/SessionScreen.h"
#include "orlixkit/ui/TextField.h"

namespace orlix {

/// The payment screen: merchant, amount, the selected card, and CVV and PIN if the card needs them.
/// Pays with and without a PIN and ends the flow with the outcome; opens another screen for cards
/// that must be unlocked or authenticated by 3-D Secure.
///
/// A payment is in progress from PAY until the flow ends, or until its connection alert is closed
/// without a retry. Meanwhile PAY and the card area do nothing, so that no second payment is sent;
/// cancel ends the flow, and the answer is discarded.
///
/// May be shown without code information.
class OXProductViewController : public SessionScreen,
                                public PurchaseInputs,
                                public Payment,
                                public TextFieldDelegate,
                                public OX3DSecureOrlixDelegate {
 public:
  OXProductViewController();

  void viewDidLoad() override;
  void viewDidAppear() override;
  bool shouldAutorotate() const override { return false; }
  void prepareForSegue(const std::string& name,
                       const std::shared_ptr<ViewController>& destination) override;

  void proceedAction(OXSession& current);
  void cardAction(OXSession& current);
  void auth3DsValidated() override;
  bool showsSessionData() const override { return true; }
  void sessionDataChanged() override;
  bool textFieldShouldChangeCharacters(TextField& field, TextRange range,
                                       const std::string& replacement) override;

 private:
  void giveDefaults();
  void showMerchant();
  void showAmount();
  bool amountGroupIsHidden() const;
  void setCurrencyLabel();
  void showSelectedCard();
  void showNoCard();
  void showUnvalidatedCard(const CardOption& card);
  void showCvvFieldIfNeededForCard(const CardOption& card);
  void hidePinField(bool hidden);
  void hideCvvField(bool hidden);
  void showUnlockButton();
  void showPayButton();
  bool isInputableAmount() const;
  bool mustValidateSelectedCard() const;

  bool amountIsAcceptable() const;
  bool cvvIsAcceptable() const;
  void payBySecureCode(OXSession& session);
  void payWithPin(OXSession& current);
  void payWithoutPin(OXSession& current);
  PurchaseRequest newPurchaseRequest() const;
  std::optional<std::string> amountToPay() const;
  void initSessionForSecureCodeScreen(OXSession& current);
  void clearSecrets();

  void makeAmtPayment();
  void makeCnpPayment();
  ConnectionAlert failureAlert() override;
  void receiptTimedOut() override;
  std::shared_ptr<OXProductViewController> self();

  std::shared_ptr<View> cardView_ = outlet<View>("cardView");
  std::shared_ptr<ImageView> cardImageView_ = outlet<ImageView>("cardImageView", cardView_);
  std::shared_ptr<Label> cardHintView_ = outlet<Label>("cardHintView", cardView_);
  std::shared_ptr<ImageView> cardViewDropdown_ = outlet<ImageView>("cardViewDropdown", cardView_);
  std::shared_ptr<Label> merchantView_ = outlet<Label>("merchantView");
  std::shared_ptr<Label> currencyLabel_ = outlet<Label>("currencyLabel");
  std::shared_ptr<Label> amountView_ = outlet<Label>("amountView");
  std::shared_ptr<View> amountGroupView_ = outlet<View>("amountGroupView");
  std::shared_ptr<TextField> inputAmountField_ =
      outlet<TextField>("inputAmountField", amountGroupView_);
  std::shared_ptr<View> cvvGroupView_ = outlet<View>("cvvGroupView");
  std::shared_ptr<TextField> cvvField_ = outlet<TextField>("cvvField", cvvGroupView_);
  std::shared_ptr<Label> cvvInfoLabel_ = outlet<Label>("cvvInfoLabel", cvvGroupView_);
  std::shared_ptr<View> pinGroupView_ = outlet<View>("pinGroupView");
  std::shared_ptr<TextField> pinField_ = outlet<TextField>("pinField", pinGroupView_);
  std::shared_ptr<Label> testWarningLabel_ = outlet<Label>("testWarningLabel");
  std::shared_ptr<Button> proceedButton_ = outlet<Button>("proceedButton");

  bool needToUnlockCard_ = false;
  CardOptionMethod paymentMethod_ = CardOptionMethod::notSet;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
  std::optional<CardOption> selectedCard_;
};

}  // namespace orlix
