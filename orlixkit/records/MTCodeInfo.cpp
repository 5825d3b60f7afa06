// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTCodeInfo.h"

#include "orlixkit/records/AnswerReader.h"

namespace orlix {

MTCodeInfo& MTCodeInfo::parseFromData(const JsonDictionary& dictionary) {
  const AnswerReader answer(dictionary);
  answer.read("code", code, hasCode);
  answer.read("amountString", amountString, hasAmountString);
  answer.read("currency", currency, hasCurrency);
  answer.read("merchantName", merchantName, hasMerchantName);
  answer.read("shortDescription", shortDescription, hasShortDescription);
  answer.read("orlixData", orlixData, hasOrlixData);
  answer.read("requestContact", requestContact, hasRequestContact);
  answer.read("requestBilling", requestBilling, hasRequestBilling);
  answer.read("requestShipping", requestShipping, hasRequestShipping);
  answer.read("acceptedCards", acceptedCards, hasAcceptedCards);
  answer.read("acceptedPayments", acceptedPayments, hasAcceptedPayments);
  answer.read("isOnUs", isOnUs, hasIsOnUs);
  answer.read("extraReferenceName", extraReferenceName, hasExtraReferenceName);
  answer.read("requestPartialPayment", requestPartialPayment, hasRequestPartialPayment);
  answer.read("vasProfileId", vasProfileId, hasVasProfileId);
  answer.read("requestTip", requestTip, hasRequestTip);
  answer.read("vasInput", vasInput, hasVasInput);
  answer.read("vasInputMessage", vasInputMessage, hasVasInputMessage);
  answer.read("vasImageURL", vasImageURL, hasVasImageURL);
  answer.read("amount", amount, hasAmount);
  answer.read("extraInput", extraInput, hasExtraInput);
  answer.read("tipFixed", tipFixed, hasTipFixed);
  answer.read("tipPercentage", tipPercentage, hasTipPercentage);
  answer.readRecord("amountOptions", amountOptions, hasAmountOptions);
  answer.readRecord("vasAccountsList", vasAccountsList, hasVasAccountsList);
  return *this;
}

}  // namespace orlix
