// SPDX-License-Identifier: Apache-2.0

// Chooses the first screen once the session is established.

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/WalletRequest.h"
#include "orlixkit/host/Host.h"

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
  explicit Lookup(OXSession& session, bool forData = false)
      : number(++session.lookupsAsked), screenChanges(session.screenChanges()), dataOnly(forData) {}

  std::uint64_t number;
  std::uint64_t screenChanges;
  bool dataOnly;

  /// Asked for the data alone, or the user is on another screen by now.
  bool isLate(const OXSession& session) const {
    return dataOnly || screenChanges != session.screenChanges();
  }

  /// Runs the task with whether the answer is late; not when a later lookup has been answered, and
  /// in the middle of a payment only once that has been given up.
  void take(OXSession& session, const std::function<void(OXSession&, bool)>& task) const {
    if (number < session.lookupTaken) {
      return;
    }
    session.lookupTaken = number;
    session.whenNotPaying("lookup",
                          [self = *this, task, deferred = session.isPaying()](OXSession& current) {
                            task(current, deferred || self.isLate(current));
                          });
  }

  /// Offers a retry, unless a later lookup speaks for this one, or no screen shows what it was for.
  void offerRetry(const OXSession& session) const;
};

bool isUsable(const OXSession& session, const std::optional<MTCodeInfo>& info) {
  const bool twoAmounts = session.inAmount && fixesAmount(info);
  return info && !twoAmounts && !asksForMoreThanIsOffered(*info);
}

void takeData(OXSession& session, MTCodeResponse response) {
  session.codeInfo = std::move(response.codeInfo);
  session.cards =
      response.cardList ? std::move(response.cardList->cardsArray) : std::vector<CardOption>();
}

void refreshData(OXSession& session, MTCodeResponse response) {
  if (isUsable(session, response.codeInfo)) {
    takeData(session, std::move(response));
    session.dataChanged();
  } else {
    // The purchase will be refused with the reason; a late lookup does not change the screen.
    log("OrlixKit: A lookup that came late found the code not usable.");
  }
}

void codeLookedUp(OXSession& session, MTCodeResponse response, bool hasWaitingScreen) {
  if (!response.codeInfo) {
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
  const auto session = OXSession::currentSession();
  const Lookup lookup(*session, dataOnly);
  requestInBackground<MTCodeResponse>(
      RequestQueue::newOperationQueue,
      [code = session->code](KCVelloConnection& connection) {
        return connection.getCodeInfoV2(code, "inapp");
      },
      [session, lookup, hasWaitingScreen](MTCodeResponse answer) {
        // Shared: a task that waits for the end of a payment is copied with its captures.
        const auto response = std::make_shared<MTCodeResponse>(std::move(answer));
        lookup.take(*session, [hasWaitingScreen, response](OXSession& current, bool late) {
          if (late) {
            refreshData(current, std::move(*response));
          } else {
            codeLookedUp(current, std::move(*response), hasWaitingScreen);
          }
        });
      },
      [session, lookup] { lookup.offerRetry(*session); });
}

/// Asks for the wallet's cards, then runs the one or the other.
void requestCards(void (OXSession::*withCards)(), bool dataOnly) {
  const auto session = OXSession::currentSession();
  const Lookup lookup(*session, dataOnly);
  requestInBackground<MTCardList>(
      RequestQueue::newOperationQueue,
      [](KCVelloConnection& connection) { return connection.getCardList(); },
      [session, lookup, withCards](const MTCardList& list) {
        lookup.take(*session, [withCards, list](OXSession& current, bool late) {
          current.cards = list.cardsArray;
          if (late) {
            current.dataChanged();
          } else if (current.cards.empty()) {
            current.showAddCardScreen();
          } else {
            (current.*withCards)();
          }
        });
      },
      [session, lookup] { lookup.offerRetry(*session); });
}

void loadFirstScreen(bool hasWaitingScreen, bool dataOnly) {
  const auto session = OXSession::currentSession();
  if (session->preRegister) {
    requestCards(&OXSession::returnUserRegistered, dataOnly);
  } else if (session->walletManagement) {
    requestCards(&OXSession::showWalletManagementScreen, dataOnly);
  } else {
    lookUpCode(hasWaitingScreen, dataOnly);
  }
}

void Lookup::offerRetry(const OXSession& session) const {
  const bool late = isLate(session);
  if (number == session.lookupsAsked && (!late || session.isDataShown())) {
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
