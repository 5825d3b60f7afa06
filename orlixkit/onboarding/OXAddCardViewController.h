// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/records/CardInfoResponse.h"
#include "orlixkit/records/MTBinInfo.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/widgets/CardNumberField.h"
#include "orlixkit/widgets/DropDownPicker.h"
#include "orlixkit/widgets/FormattedTextField.h"

namespace orlix {

/// The form for adding a card. Asks the server which values the issuer requires, validates and
/// sends only those, and links the card.
///
/// Two proceeds in a row make two lookups and may link twice: the server detects duplicates. After
/// the user has left the form it links no card; a card linked before is still adopted.
class OXAddCardViewController : public OrlixViewController {
 public:
  OXAddCardViewController();
  void viewDidLoad() override;
  void viewDidAppear() override;

  void proceedAction();
  /// Returns to where the form was opened from.
  static void cancelAction(OXSession& current);
  /// Looks the card number up and continues as the answer requires. Also called by the network
  /// alert's retry, with the values of the last proceed.
  void checkCard();
  /// Sends the record; the request fills its absent fields. Also called by the network alert's
  /// retry, with the same record.
  void linkCard(const std::shared_ptr<CardInfoResponse>& card);

  /// Despite its name, checks only the length: 16 characters or more. The server verifies check
  /// digits.
  static bool isValidLuhn(std::string_view cardNumber);
  static bool isValidExpiryDate(std::string_view monthAndYear);
  /// Checks only the length: 10 characters.
  static bool isValidDateOfBirth(std::string_view dateOfBirth);

 private:
  void populateCardAccountPicker();
  void lookedUp(const MTBinInfo& info);
  /// Each returns true when the user has nothing to enter; otherwise it has notified the user and
  /// hidden the indicator.
  bool takeExpiryDate(CardInfoResponse& card);
  bool takeDateOfBirth(CardInfoResponse& card);
  bool takeAccount(CardInfoResponse& card);
  void answered(const MTCardResponse& response, const std::shared_ptr<CardInfoResponse>& card);
  void refuse(const std::string& message);
  std::shared_ptr<OXAddCardViewController> self();

  std::shared_ptr<CardNumberField> cardNumberField_;
  std::shared_ptr<TextField> cardHolderField_;
  std::shared_ptr<View> expiryDateGroupView_;
  std::shared_ptr<Label> expiryDateLabel_;
  std::shared_ptr<FormattedTextField> expiryDateField_;
  std::shared_ptr<View> dateOfBirthGroupView_;
  std::shared_ptr<Label> dateOfBirthLabel_;
  std::shared_ptr<FormattedTextField> dateOfBirthField_;
  std::shared_ptr<View> cardAccountGroupView_;
  std::shared_ptr<Label> cardAccountLabel_;
  std::shared_ptr<TextField> cardAccountField_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> cancelButton_;
  std::shared_ptr<DropDownPicker> cardAccountPicker_;

  // Values of the fields at the last proceed.
  SecretString cardNumber_;
  std::string cardHolder_;
  std::string expiryDate_;
  std::string dateOfBirth_;
  std::string dateOfBirthFormatted_;
  MTBinInfo binInfo_;
};

}  // namespace orlix
