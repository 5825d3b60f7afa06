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

/// The form on which a card is added. Asks the server what the card's issuer wants to know, checks
/// and sends just that, and links the card.
///
/// Two proceeds in a row are two lookups, and may link twice: the server tells cards apart. A form
/// that the user has left meanwhile links nothing any more; a card that was linked before is taken
/// over nevertheless.
class OXAddCardViewController : public OrlixViewController {
 public:
  OXAddCardViewController();
  void viewDidLoad() override;
  void viewDidAppear() override;

  void proceedAction();
  void cancelAction();
  /// Looks the card number up and goes on with what the answer asks for. What the network alert's
  /// retry calls, with the values of the last proceed.
  void checkCard();
  /// Sends the record, which the request fills in. What the network alert's retry calls, with the
  /// same record.
  void linkCard(const std::shared_ptr<CardInfoResponse>& card);

  /// A test of the length, whatever its name says: 16 characters or more. Check digits are for the
  /// server.
  static bool isValidLuhn(std::string_view cardNumber);
  static bool isValidExpiryDate(std::string_view monthAndYear);
  /// A test of the length alone: 10 characters.
  static bool isValidDateOfBirth(std::string_view dateOfBirth);

 private:
  void populateCardAccountPicker();
  void lookedUp(const MTBinInfo& info);
  /// Each true when there is nothing to ask the user for; otherwise the user has been told, and the
  /// indicator is gone.
  bool takeExpiryDate(CardInfoResponse& card);
  bool takeDateOfBirth(CardInfoResponse& card);
  bool takeAccount(CardInfoResponse& card);
  void answered(const MTCardResponse& response, const std::shared_ptr<CardInfoResponse>& card);
  void linked(const MTCardResponse& response);
  void warn(const std::string& message);
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

  // What the fields held at the last proceed.
  SecretString cardNumber_;
  std::string cardHolder_;
  std::string expiryDate_;
  std::string dateOfBirth_;
  std::string dateOfBirthFormatted_;
  MTBinInfo binInfo_;
};

}  // namespace orlix
