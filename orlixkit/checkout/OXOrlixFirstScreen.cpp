// Which screen comes first once the session stands.

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/WalletRequest.h"
#include "orlixkit/platform/Host.h"

namespace orlix {

namespace {

enum ErrorCode { kCodeNotUsable = 4, kTwoAmounts = 7 };

bool asksForMoreThanIsOffered(const MTCodeInfo& info) {
  return info.requestBilling || info.requestShipping || info.requestTip ||
         info.requestPartialPayment || info.orlixData;
}

/// One lookup (or card list) of a flow. Its answer is taken in the order of the requests, and leads
/// to a screen only while the user is where he was when it was asked for.
struct Lookup {
  std::shared_ptr<OXSession> session = OXSession::currentSession();
  std::uint64_t number = ++session->lookupsAsked;
  std::uint64_t screenChanges = session->screenChanges();
  bool dataOnly = false;

  /// The user has gone to another screen meanwhile.
  bool changesDataOnly() const { return dataOnly || screenChanges != session->screenChanges(); }

  /// Runs the task with whether it may change data only; not when a later lookup has been answered,
  /// and in the middle of a payment only once that has been given up.
  void take(const std::function<void(bool)>& task) const {
    if (number < session->lookupTaken) {
      return;
    }
    session->lookupTaken = number;
    const bool deferred = session->isPaying();
    session->whenNotPaying(
        "lookup", [self = *this, task, deferred] { task(deferred || self.changesDataOnly()); });
  }

  /// Offers a retry, unless a later lookup speaks for this one, or no screen shows what it was for.
  void offerRetry() const;
};

bool isUsable(const OXSession& session, const MTCodeInfo& info) {
  const bool twoAmounts = session.inAmount && !info.amountString.value_or("").empty();
  return !twoAmounts && !asksForMoreThanIsOffered(info);
}

void takeData(OXSession& session, MTCodeResponse response) {
  session.codeInfo = std::move(response.codeInfo);
  session.cards =
      response.cardList ? std::move(response.cardList->cardsArray) : std::vector<CardOption>();
}

void refreshData(OXSession& session, MTCodeResponse response) {
  if (response.hasCodeInfo && response.codeInfo && isUsable(session, *response.codeInfo)) {
    takeData(session, std::move(response));
    session.dataChanged();
  } else {
    // The purchase will be told; the user's present screen is none of this lookup's business.
    log("OrlixKit: A lookup that came late found the code not usable.");
  }
}

void codeLookedUp(OXSession& session, MTCodeResponse response, bool hasWaitingScreen) {
  if (!response.hasCodeInfo || !response.codeInfo) {
    // After a retry there is no callback, and the screen stays as it is: hosts rely on it.
    if (hasWaitingScreen) {
      session.returnError(kCodeNotUsable);
    }
    return;
  }
  const bool asksForMore = asksForMoreThanIsOffered(*response.codeInfo);
  takeData(session, std::move(response));
  if (session.isNotVariableAmount()) {
    session.returnError(kTwoAmounts);
  } else if (asksForMore) {
    session.returnError(kCodeNotUsable);
  } else {
    session.showPurchaseScreen();
  }
}

void lookUpCode(bool hasWaitingScreen, bool dataOnly) {
  const Lookup lookup{.dataOnly = dataOnly};
  requestInBackground<MTCodeResponse>(
      RequestQueue::newOperationQueue,
      [code = lookup.session->code](KCVelloConnection& connection) {
        return connection.getCodeInfoV2(code, "inapp");
      },
      [lookup, hasWaitingScreen](const MTCodeResponse& response) {
        lookup.take([lookup, hasWaitingScreen, response](bool late) {
          if (late) {
            refreshData(*lookup.session, response);
          } else {
            codeLookedUp(*lookup.session, response, hasWaitingScreen);
          }
        });
      },
      [lookup] { lookup.offerRetry(); });
}

/// Asks for the wallet's cards, then runs the one or the other.
void requestCards(void (OXSession::*withCards)(), bool dataOnly) {
  const Lookup lookup{.dataOnly = dataOnly};
  requestInBackground<MTCardList>(
      RequestQueue::newOperationQueue,
      [](KCVelloConnection& connection) { return connection.getCardList(); },
      [lookup, withCards](const MTCardList& list) {
        lookup.take([lookup, withCards, list](bool late) {
          OXSession& session = *lookup.session;
          session.cards = list.cardsArray;
          if (late) {
            session.dataChanged();
          } else if (session.cards.empty()) {
            session.showAddCardScreen();
          } else {
            (session.*withCards)();
          }
        });
      },
      [lookup] { lookup.offerRetry(); });
}

void loadFirstScreen(bool hasWaitingScreen, bool dataOnly) {
  const auto session = OXSession::currentSession();
  if (!session->isLive()) {
    log("OrlixKit: The checkout is over; ignoring loadCodeInfo.");
  } else if (session->preRegister) {
    requestCards(&OXSession::returnUserRegistered, dataOnly);
  } else if (session->walletManagement) {
    requestCards(&OXSession::showWalletManagementScreen, dataOnly);
  } else {
    lookUpCode(hasWaitingScreen, dataOnly);
  }
}

void Lookup::offerRetry() const {
  const bool late = changesDataOnly();
  if (number == session->lookupsAsked && (!late || session->isDataShown())) {
    OXUtil::showNetworkErrorRetryObject(
        [late] { loadFirstScreen(/*hasWaitingScreen=*/false, late); });
  }
}

}  // namespace

void OXOrlix::loadCodeInfo(const Controller& waiting) {
  loadFirstScreen(waiting != nullptr, /*dataOnly=*/false);
}

void OXOrlix::reloadData() { loadFirstScreen(/*hasWaitingScreen=*/false, /*dataOnly=*/true); }

void OXOrlix::loadCards() { requestCards(&OXSession::returnUserRegistered, /*dataOnly=*/false); }

void OXOrlix::loadWallet() {
  requestCards(&OXSession::showWalletManagementScreen, /*dataOnly=*/false);
}

}  // namespace orlix
