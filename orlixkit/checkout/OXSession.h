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

/// The checkout in progress: the host's request, the data that the screens share, and the
/// operations that change the screen or end the flow.
///
/// There is one current session; every entry call of the facade replaces it. A session that was
/// replaced or has ended is over: its show and return operations only write a log line, its
/// requests send nothing, and no task of it reaches the next flow's host or calls its own host a
/// second time. The callback of a return operation that was called before the replacement is still
/// made, from the main queue.
///
/// A payment in progress belongs to the session: there is at most one, whichever screen sent it,
/// and until it has ended only the issuer's pages may replace that screen.
///
/// Without a presenting controller nothing is shown and no callback is made. Ending a flow also
/// dismisses the progress indicator, because the answers that would have done so are dropped.
///
/// Thread: `currentSession` and `isLive` from any thread; all else on the main thread.
class OXSession : public std::enable_shared_from_this<OXSession> {
 public:
  /// Never null while a host is installed.
  static std::shared_ptr<OXSession> currentSession();
  /// Replaces the current session by a new one; the old one releases its data.
  static void reset();

  /// True while this is the current session and no return operation has ended it.
  bool isLive() const { return flow_->isLive(); }
  /// The same for the floors below. Any thread.
  const std::shared_ptr<Flow>& flow() const { return flow_; }
  /// The client for this flow's requests; null before the first session start.
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
  /// Number of show operations carried out. A lookup that arrives after a further one only updates
  /// data, because the user is on another screen by then.
  std::uint64_t screenChanges() const { return screenChanges_; }
  /// Updates the screens that show `cards` or `codeInfo` after these were replaced.
  void dataChanged();
  /// True when a shown screen displays `cards` or `codeInfo`.
  bool isDataShown() const;
  /// True while a screen of the library is shown or being dismissed.
  bool hasScreens() const;

  void returnUserDidCancel();
  void returnUserRegistered();
  void returnUserDoneWithWallet();
  /// Does not end the flow: the screen that asked for the authentication continues it.
  void returnAuth3DsValidated();
  void returnPaymentSucceededWithTransactionReference(const std::string& reference);
  void returnError(int errorCode);
  void returnPaymentFailedWithTransactionReference(const std::string& reference);
  void returnInvalidCode();

  /// Begins a payment. False while one is in progress: the caller must not send.
  bool beginPayment();
  bool isPaying() const { return paying_; }
  /// What is known of the purchases of this flow. Never null.
  const std::shared_ptr<PurchaseLedger>& purchases() const { return purchases_; }
  /// Ends the payment without an outcome and runs the tasks that waited for it.
  void endPayment();
  /// Runs the task at once, or when the payment in progress is given up. Replaces a waiting task of
  /// the same source. The session holds the task, so the task must not hold the session.
  using DataTask = std::function<void(OXSession&)>;
  void whenNotPaying(const std::string& source, DataTask task);

  /// The alerts of failed requests.
  ConnectionAlerts& connectionAlerts() { return *connectionAlerts_; }
  /// Registers an alert of this flow, which is removed when the flow ends.
  void keepTrackOf(const std::shared_ptr<AlertController>& alert);
  /// Removes the flow's alerts and shows no further ones.
  void closeAlerts();

  /// Call when a step ran out of memory and may be incomplete: ends the flow with error 2, or makes
  /// the pending callback. Does nothing after the callback. May throw std::bad_alloc; call it again
  /// then.
  void fail();
  /// Ends the flow without a callback. May throw std::bad_alloc; call it again then.
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
  /// Numbers of the last lookup (or card list) requested and of the last one used: answers take
  /// effect in the order of their requests.
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
