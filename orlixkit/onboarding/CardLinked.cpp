// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/CardLinked.h"

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

void cardLinked(OXSession& session, const MTCardResponse& response,
                const std::function<CardOption(const std::vector<CardOption>&)>& chosen) {
  const std::vector<CardOption> cards =
      response.cardList ? response.cardList->cardsArray : std::vector<CardOption>();
  OXUtil::setLastUsedCardId(cards.empty() ? 0 : chosen(cards).cardId);
  if (session.preRegister) {
    session.returnUserRegistered();
  } else {
    OXOrlix::loadCodeInfo(nullptr);
  }
}

}  // namespace orlix
