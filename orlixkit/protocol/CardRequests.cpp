// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ports/Utf8.h"
#include "orlixkit/protocol/KCVelloConnection.h"

// The requests of KCVelloConnection that manage the wallet's cards.

namespace orlix {

namespace {

constexpr std::size_t kBinCharacters = 9;

void fill(std::optional<std::string>& field) {
  if (!field) {
    field = "";
  }
}

}  // namespace

MTCardList KCVelloConnection::getCardList() {
  return request<MTCardList>(withNode("/card/list/"), {});
}

MTCardResponse KCVelloConnection::linkCard(CardInfoResponse& card) {
  fill(card.account);
  fill(card.dateOfBirth);
  if (!card.expiryDateMonth) {
    // Without a month the year is dropped; a month without a year makes the request fail here, not
    // at the issuer.
    card.expiryDateMonth = "";
    card.expiryDateYear = "";
  }
  fill(card.linkedMsisdn);
  const std::string locationInfo = card.location ? card.location->buildLocation() : "";
  fill(card.cardHolderName);

  RequestBody body;
  body.setRequired("cardNumber", card.cardNumber);
  body.setRequired("account", card.account);
  body.setRequired("dateOfBirth", card.dateOfBirth);
  body.setRequired("expiryMonth", card.expiryDateMonth);
  body.setRequired("expiryYear", card.expiryDateYear);
  body.setRequired("linkedMsisdn", card.linkedMsisdn);
  body.setRequired("cardHolderName", card.cardHolderName);
  body.set("locationInfo", locationInfo);
  return request<MTCardResponse>(withNode("/card/link/"), body);
}

MTCardResponse KCVelloConnection::delinkCard(std::int64_t cardId) {
  return request<MTCardResponse>(withNode("/card/delink/"), {{"cardId", cardId}});
}

MTCardValidateResponse KCVelloConnection::validateCard(bool validate, std::int64_t cardId,
                                                       const std::string& inputValue) {
  return request<MTCardValidateResponse>(
      withNode("/card/validate/"),
      {{"validate", validate}, {"cardId", cardId}, {"inputValue", inputValue}});
}

MTBinInfo KCVelloConnection::getBinInfo(std::string_view cardNumber) {
  return request<MTBinInfo>(withNode("/card/bin/"),
                            {{"bin", std::string(firstCharacters(cardNumber, kBinCharacters))}});
}

MTApiResponse KCVelloConnection::updateTC() {
  return request<MTApiResponse>("/profile/updateTC", {});
}

}  // namespace orlix
