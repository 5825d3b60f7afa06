#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/checkout/OXDelegates.h"
#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/platform/Secret.h"
#include "orlixkit/platform/ui/ViewController.h"
#include "orlixkit/records/CardInfoResponse.h"
#include "orlixkit/records/CardOption.h"
#include "orlixkit/records/MTCodeInfo.h"

namespace orlix {

/// The checkout in progress: what the host asked for, what the screens tell one another, and the
/// moves that change the screen or end the flow.
///
/// There is one current session; every entry call of the facade puts a new one in its place. A
/// session that was replaced, or that has ended, is over: its show and return operations do nothing
/// but write a log line, so that whatever was still under way can neither reach the next flow's
/// host nor call its own host a second time. Only the callback of a return operation that was
/// called before the replacement is still made: the host is owed it.
///
/// Without a presenting controller nothing is shown and no callback is made. Ending a flow also
/// takes the progress indicator away, because the answers that would have done so are dropped.
///
/// Thread: `currentSession` and `isLive` from any thread; all else on the main thread.
class OXSession : public std::enable_shared_from_this<OXSession> {
 public:
  /// Never none while a host is installed.
  static std::shared_ptr<OXSession> currentSession();
  /// Puts a fresh session in place of the current one, which lets go of all it held.
  static void reset();

  /// Current, and not ended by a return operation.
  bool isLive() const;

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

  void returnUserDidCancel();
  void returnUserRegistered();
  void returnUserDoneWithWallet();
  /// Not an end: the flow goes on with whoever asked for the authentication.
  void returnAuth3DsValidated();
  void returnPaymentSucceededWithTransactionReference(const std::string& reference);
  void returnError(int errorCode);
  void returnPaymentFailedWithTransactionReference(const std::string& reference);
  void returnInvalidCode();

  /// A step found no memory and may be half done: ends the flow with error 2, or makes the callback
  /// that an earlier end still owes. Does nothing once the host has heard. May throw
  /// std::bad_alloc, and be called again then.
  void fail();
  /// Ends the flow without a word to the host. The same.
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

 private:
  using HostCallback = std::function<void(OXOrlixDelegate&)>;
  using Prepare = std::function<void(const std::shared_ptr<ViewController>&)>;

  void show(const std::string& identifier, const Prepare& prepare = {});
  void present(const std::string& identifier, const Prepare& prepare);
  void handInputsTo(const std::shared_ptr<ViewController>& screen);
  void end(const std::string& operation, HostCallback callback);
  void leave(Task callback);
  /// Takes the screens away at once; an animation would have to be waited for.
  void leaveAtOnce();
  void owe(HostCallback callback);
  void payOwed();
  bool isLiveFor(const std::string& operation) const;
  void letGo();

  std::atomic<bool> ended_{false};
  Task owed_;  ///< the host's callback, until it is made
};

}  // namespace orlix
