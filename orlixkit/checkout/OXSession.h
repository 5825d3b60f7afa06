// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/checkout/ConnectionAlerts.h"
#include "orlixkit/checkout/OXDelegates.h"
#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/checkout/PurchaseLedger.h"
#include "orlixkit/ports/Secret.h"
#include "orlixkit/protocol/Flow.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/records/CardInfoResponse.h"
#include "orlixkit/records/CardOption.h"
#include "orlixkit/records/MTCodeInfo.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

class SessionScreen;

/// The checkout in progress: what the host asked for, what the screens tell one another, and the
/// moves that change the screen or end the flow.
///
/// There is one current session; every entry call of the facade puts a new one in its place. A
/// session that was replaced, or that has ended, is over: its show and return operations do nothing
/// but write a log line, its requests send nothing more, and whatever was still under way can
/// neither reach the next flow's host nor call its own host a second time. Only the callback of a
/// return operation that was called before the replacement is still made, from the main queue.
///
/// A payment in progress belongs to the session: there is one at a time, whichever screen sent it,
/// and until it has ended no screen but the issuer's pages takes its place.
///
/// Without a presenting controller nothing is shown and no callback is made. Ending a flow also
/// dismisses the progress indicator, because the answers that would have done so are dropped.
///
/// Thread: `currentSession` and `isLive` from any thread; all else on the main thread.
class OXSession : public std::enable_shared_from_this<OXSession> {
 public:
  /// Never none while a host is installed.
  static std::shared_ptr<OXSession> currentSession();
  /// Puts a fresh session in place of the current one, which releases all it held.
  static void reset();

  /// Current, and not ended by a return operation.
  bool isLive() const { return flow_->isLive(); }
  /// The same for the floors below. Any thread.
  const std::shared_ptr<Flow>& flow() const { return flow_; }
  /// The wallet server's client for the requests of this flow; none before the first session start.
  std::optional<KCVelloConnection> connection() const;

  /// True when both the host and the code fix an amount.
  bool isNotVariableAmount() const;

  void showPurchaseScreen();
  void showCardsScreen();
  void showAddCardScreen();
  void showSecureCodeScreen();
  void show3DAuthSecureCodeScreen();
  void showMsisdnRelinkScreen();
  void showCardValidationScreen();
  void showTemsAndConditionChangeScreen();
  void showWalletManagementScreen();
  /// Counts the show operations that were carried out. A lookup that comes after a further one
  /// finds the user elsewhere, and updates data only.
  std::uint64_t screenChanges() const { return screenChanges_; }
  /// `cards` or `codeInfo` have been replaced: the screens that show them take them over.
  void dataChanged();
  /// One of the screens at hand shows them.
  bool isDataShown() const;
  /// A screen of the library is shown, also while it is being dismissed.
  bool hasScreens() const;

  void returnUserDidCancel();
  void returnUserRegistered();
  void returnUserDoneWithWallet();
  /// Not an end: the screen that asked for the authentication goes on with the flow.
  void returnAuth3DsValidated();
  void returnPaymentSucceededWithTransactionReference(const std::string& reference);
  void returnError(int errorCode);
  void returnPaymentFailedWithTransactionReference(const std::string& reference);
  void returnInvalidCode();

  /// Begins a payment. False, and nothing may be sent, while one is in progress.
  bool beginPayment();
  bool isPaying() const { return paying_; }
  /// What is known of the purchases of this flow. Never null.
  const std::shared_ptr<PurchaseLedger>& purchases() const { return purchases_; }
  /// The payment was given up without an outcome; what waited for that runs.
  void endPayment();
  /// Runs the task at once, or when the payment in progress has been given up. A later one replaces
  /// an earlier one of the same source. The session keeps it, so that it must not hold the session.
  using DataTask = std::function<void(OXSession&)>;
  void whenNotPaying(const std::string& source, DataTask task);

  /// The alerts of failed requests.
  ConnectionAlerts& connectionAlerts() { return *connectionAlerts_; }
  /// An alert of this flow: it goes with the flow, wherever it is shown.
  void keepTrackOf(const std::shared_ptr<AlertController>& alert);
  /// Takes the flow's alerts away, and shows none any more.
  void closeAlerts();

  /// A step found no memory and may be half done: ends the flow with error 2, or makes the callback
  /// that is still pending. Does nothing once the host has heard. May throw std::bad_alloc, and be
  /// called again then.
  void fail();
  /// Ends the flow without a callback. The same.
  void abandon();

  bool mustValidateCard = false;
  bool preRegister = false;
  bool walletManagement = false;
  std::shared_ptr<ViewController> presentingController;
  std::string activationMsisdn;
  std::optional<std::string> code;
  std::vector<CardOption> cards;
  std::optional<MTCodeInfo> codeInfo;
  std::int64_t system = 0;  ///< 0 live, non-zero test
  std::shared_ptr<OXOrlixDelegate> delegate;
  std::shared_ptr<OX3DSecureOrlixDelegate> delegate3DSecure;
  std::int64_t cardId = 0;
  std::optional<SecretString> cvv;
  std::optional<std::string> amount;
  std::optional<std::string> inAmount;
  std::optional<std::string> preMSISDN;
  std::optional<std::string> tempAmountInput;
  std::shared_ptr<CardInfoResponse> cardInfoResponse;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate;
  /// Number of the last lookup (or card list) asked for, and of the last one taken over: answers
  /// take effect in the order of their requests.
  std::uint64_t lookupsAsked = 0;
  std::uint64_t lookupTaken = 0;

 private:
  /// How the flow ends: the operation that ends it, for the log, and the host's callback.
  struct Ending {
    std::string operation;
    std::function<void(OXOrlixDelegate&)> tell;
  };
  using Prepare = std::function<void(const std::shared_ptr<ViewController>&)>;

  void show(const std::string& identifier, const Prepare& prepare = {});
  void showIssuersPage(const std::string& identifier);
  void replaceScreen(const std::string& identifier, const Prepare& prepare);
  void present(const std::string& identifier, const Prepare& prepare);
  void handInputsTo(const std::shared_ptr<ViewController>& screen);
  void end(const Ending& ending);
  void leave(Task then);
  /// Dismisses the screens without an animation, which would have to be waited for.
  void leaveAtOnce();
  void settle(const Ending& ending);
  void deliverPendingCallback();
  std::vector<std::shared_ptr<SessionScreen>> shownScreens() const;
  bool isLiveFor(const std::string& operation) const;
  void release();

  std::shared_ptr<Flow> flow_ = std::make_shared<Flow>();
  Task pendingCallback_;  ///< of the host, until it is made
  bool paying_ = false;
  const std::shared_ptr<PurchaseLedger> purchases_ = std::make_shared<PurchaseLedger>();
  std::vector<std::pair<std::string, DataTask>> whenNotPaying_;
  std::uint64_t screenChanges_ = 0;
  std::shared_ptr<ConnectionAlerts> connectionAlerts_ = std::make_shared<ConnectionAlerts>();
  std::vector<std::weak_ptr<AlertController>> alerts_;
};

}  // namespace orlix
