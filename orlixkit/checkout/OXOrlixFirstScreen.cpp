// Which screen comes first once the session stands.

#include <utility>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/WalletRequest.h"

namespace orlix {

namespace {

enum ErrorCode { kCodeNotUsable = 4, kTwoAmounts = 7 };

bool asksForMoreThanIsOffered(const MTCodeInfo& info) {
  return info.requestBilling || info.requestShipping || info.requestTip ||
         info.requestPartialPayment || info.orlixData;
}

void codeLookedUp(OXSession& session, MTCodeResponse response, bool hasWaitingScreen) {
  if (!response.hasCodeInfo || !response.codeInfo) {
    // After a retry nobody is told, and the screen stays as it is; hosts know it so.
    if (hasWaitingScreen) {
      session.returnError(kCodeNotUsable);
    }
    return;
  }
  session.codeInfo = std::move(response.codeInfo);
  if (session.isNotVariableAmount()) {
    session.returnError(kTwoAmounts);
  } else if (asksForMoreThanIsOffered(*session.codeInfo)) {
    session.returnError(kCodeNotUsable);
  } else {
    session.cards =
        response.cardList ? std::move(response.cardList->cardsArray) : std::vector<CardOption>();
    session.showPurchaseScreen();
  }
}

/// Asks for the wallet's cards, then runs the one or the other.
void requestCards(void (OXSession::*withCards)(), Task retry) {
  const auto session = OXSession::currentSession();
  requestInBackground<MTCardList>(
      RequestQueue::newOperationQueue,
      [](KCVelloConnection& connection) { return connection.getCardList(); },
      [session, withCards](MTCardList list) {
        session->cards = std::move(list.cardsArray);
        if (session->cards.empty()) {
          session->showAddCardScreen();
        } else {
          ((*session).*withCards)();
        }
      },
      [retry = std::move(retry)] { OXUtil::showNetworkErrorRetryObject(retry); });
}

}  // namespace

void OXOrlix::loadCodeInfo(const Controller& waiting) {
  const auto session = OXSession::currentSession();
  if (!session->isLive()) {
    log("OrlixKit: The checkout is over; ignoring loadCodeInfo.");
    return;
  }
  if (session->preRegister) {
    loadCards();
    return;
  }
  if (session->walletManagement) {
    loadWallet();
    return;
  }
  requestInBackground<MTCodeResponse>(
      RequestQueue::newOperationQueue,
      [code = session->code](KCVelloConnection& connection) {
        return connection.getCodeInfoV2(code, "inapp");
      },
      [session, hasWaitingScreen = waiting != nullptr](MTCodeResponse response) {
        codeLookedUp(*session, std::move(response), hasWaitingScreen);
      },
      [] { OXUtil::showNetworkErrorRetryObject([] { loadCodeInfo(nullptr); }); });
}

void OXOrlix::loadCards() {
  requestCards(&OXSession::returnUserRegistered, [] { loadCards(); });
}

void OXOrlix::loadWallet() {
  requestCards(&OXSession::showWalletManagementScreen, [] { loadWallet(); });
}

}  // namespace orlix
