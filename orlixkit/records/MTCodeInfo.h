// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/records/Json.h"
#include "orlixkit/records/MTAmountOptions.h"
#include "orlixkit/records/MTVasAccountList.h"

namespace orlix {

/// Data of a code: the merchant, the amount and the values that the user has to enter. Amounts,
/// tips and discounts are decimal texts.
struct MTCodeInfo {
  std::optional<std::string> code;
  bool hasCode = false;
  std::optional<std::string> amountString;
  bool hasAmountString = false;
  std::optional<std::string> currency;
  bool hasCurrency = false;
  std::optional<std::string> merchantName;
  bool hasMerchantName = false;
  std::optional<std::string> shortDescription;
  bool hasShortDescription = false;
  bool orlixData = false;
  bool hasOrlixData = false;
  bool requestContact = false;
  bool hasRequestContact = false;
  bool requestBilling = false;
  bool hasRequestBilling = false;
  bool requestShipping = false;
  bool hasRequestShipping = false;
  std::optional<std::string> acceptedCards;
  bool hasAcceptedCards = false;
  std::optional<std::string> acceptedPayments;
  bool hasAcceptedPayments = false;
  bool isOnUs = false;
  bool hasIsOnUs = false;
  std::optional<std::string> extraReferenceName;
  bool hasExtraReferenceName = false;
  bool requestPartialPayment = false;
  bool hasRequestPartialPayment = false;
  std::int64_t vasProfileId = 0;
  bool hasVasProfileId = false;
  bool requestTip = false;
  bool hasRequestTip = false;
  std::optional<std::string> vasInput;
  bool hasVasInput = false;
  std::optional<std::string> vasInputMessage;
  bool hasVasInputMessage = false;
  std::optional<std::string> vasImageURL;
  bool hasVasImageURL = false;
  std::optional<std::string> amount;
  bool hasAmount = false;
  std::shared_ptr<const JsonValue> extraInput;  ///< the JSON value
  bool hasExtraInput = false;
  std::optional<std::string> tipFixed;
  bool hasTipFixed = false;
  std::optional<std::string> tipPercentage;
  bool hasTipPercentage = false;
  std::optional<MTAmountOptions> amountOptions;
  bool hasAmountOptions = false;
  std::optional<MTVasAccountList> vasAccountsList;
  bool hasVasAccountsList = false;

  /// Throws std::invalid_argument when a value cannot be read.
  MTCodeInfo& parseFromData(const JsonDictionary& dictionary);
};

}  // namespace orlix
