#include "orlixkit/checkout/OXSession.h"

#include <mutex>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/PurchaseInputs.h"
#include "orlixkit/checkout/ScreenChange.h"
#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/LocationUtil.h"

namespace orlix {

namespace {

/// The host's current session. The lock covers the pointer: background tasks ask for it while an
/// entry call replaces it.
struct CurrentSession {
  std::mutex lock;
  std::shared_ptr<OXSession> session = std::make_shared<OXSession>();
};

CurrentSession& current() { return Host::current().shared<CurrentSession>(); }

}  // namespace

std::shared_ptr<OXSession> OXSession::currentSession() {
  CurrentSession& holder = current();
  const std::lock_guard guard(holder.lock);
  return holder.session;
}

void OXSession::reset() {
  auto session = std::make_shared<OXSession>();
  {
    CurrentSession& holder = current();
    const std::lock_guard guard(holder.lock);
    std::swap(holder.session, session);
  }
  session->letGo();
}

/// A task that is still under way may hold the session for a while; what the session held goes now.
void OXSession::letGo() {
  ended_ = true;
  presentingController.reset();
  delegate.reset();
  delegate3DSecure.reset();
  transitioningDelegate.reset();
  cardInfoResponse.reset();
  cvv.reset();
}

bool OXSession::isLive() const { return !ended_ && currentSession().get() == this; }

bool OXSession::isLiveFor(const std::string& operation) const {
  if (!isLive()) {
    log("OrlixKit: The checkout is over; ignoring " + operation + ".");
    return false;
  }
  return true;
}

bool OXSession::isNotVariableAmount() const {
  return inAmount && codeInfo && codeInfo->amountString && !codeInfo->amountString->empty();
}

void OXSession::show(const std::string& identifier, const Prepare& prepare) {
  if (!isLiveFor("the screen " + identifier) || !presentingController) {
    return;
  }
  cutPresented(presentingController, [self = shared_from_this(), identifier, prepare] {
    // The cut may have made an earlier flow's callback, and its host begun the next flow in it.
    if (self->isLiveFor("the screen " + identifier)) {
      self->present(identifier, prepare);
    }
  });
}

void OXSession::present(const std::string& identifier, const Prepare& prepare) {
  const std::shared_ptr<ViewController> screen =
      Host::current().application().storyboard().make(identifier);
  if (!screen) {
    return;
  }
  if (prepare) {
    prepare(screen);
  }
  transitioningDelegate = std::make_shared<OXTransitioningDelegate>();
  screen->transitioningDelegate = transitioningDelegate;
  screen->modalPresentationStyle = ModalPresentationStyle::custom;
  presentingController->present(screen, false);
}

void OXSession::handInputsTo(const std::shared_ptr<ViewController>& screen) {
  if (const auto inputs = std::dynamic_pointer_cast<PurchaseInputs>(screen)) {
    inputs->code = code;
    inputs->codeInfo = codeInfo;
    inputs->cards = cards;
    inputs->system = system;
  }
}

void OXSession::showPurchaseScreen() {
  show("Product", [this](const std::shared_ptr<ViewController>& screen) { handInputsTo(screen); });
}

void OXSession::showCardsScreen() { show("Cards"); }
void OXSession::showAddCardScreen() { show("AddCard"); }
void OXSession::showSecureCodeScreen() { show("SecureCode"); }
void OXSession::show3DAuthSecureCodeScreen() { show("3DAuthSecureCode"); }
void OXSession::showMsisdnRelinkScreen() { show("MsisdnRelink"); }
void OXSession::showCardValidationScreen() { show("CardValidation"); }
void OXSession::showTemsAndConditionChangeScreen() { show("TermsAndConditionChange"); }
void OXSession::showWalletManagementScreen() { show("WalletManagement"); }

void OXSession::end(const std::string& operation, HostCallback callback) {
  if (!isLiveFor(operation)) {
    return;
  }
  owe(std::move(callback));
  OXUtil::indicator().dismiss();
  leave([self = shared_from_this()] { self->payOwed(); });
}

/// From here on the host is owed its callback, whatever becomes of the steps up to it.
void OXSession::owe(HostCallback callback) {
  owed_ = [receiver = delegate, callback = std::move(callback)] {
    if (receiver) {
      callback(*receiver);
    }
  };
  ended_ = true;
}

void OXSession::payOwed() {
  if (const Task callback = std::exchange(owed_, {})) {
    callback();
  }
}

void OXSession::fail() {
  if (isLive()) {
    owe([](OXOrlixDelegate& host) { host.orlixError(2); });
  }
  if (owed_) {
    leaveAtOnce();
  }
}

void OXSession::abandon() {
  ended_ = true;
  owed_ = {};
  leaveAtOnce();
}

void OXSession::leaveAtOnce() {
  LocationUtil::sharedLocationUtil().stopLocationDetection();
  if (!presentingController) {
    OXUtil::indicator().dismiss();
    return;
  }
  presentingController->dismiss(false, [self = shared_from_this()] {
    // Only now: a screen on its way in is told that it has appeared before it is taken away.
    OXUtil::indicator().dismiss();
    self->payOwed();
  });
}

void OXSession::leave(Task callback) {
  LocationUtil::sharedLocationUtil().stopLocationDetection();
  if (presentingController) {
    presentingController->dismiss(true, std::move(callback));
  }
}

void OXSession::returnAuth3DsValidated() {
  if (!isLiveFor("returnAuth3DsValidated")) {
    return;
  }
  leave([receiver = delegate3DSecure] {
    if (receiver) {
      receiver->auth3DsValidated();
    }
  });
}

void OXSession::returnUserDidCancel() {
  end("returnUserDidCancel", [](OXOrlixDelegate& host) { host.orlixUserDidCancel(); });
}

void OXSession::returnUserRegistered() {
  end("returnUserRegistered", [](OXOrlixDelegate& host) { host.orlixUserRegistered(); });
}

void OXSession::returnUserDoneWithWallet() {
  end("returnUserDoneWithWallet", [](OXOrlixDelegate& host) { host.orlixUserCompletedWallet(); });
}

void OXSession::returnPaymentSucceededWithTransactionReference(const std::string& reference) {
  end("returnPaymentSucceededWithTransactionReference", [reference](OXOrlixDelegate& host) {
    host.orlixPaymentSucceededWithTransactionReference(reference);
  });
}

void OXSession::returnError(int errorCode) {
  end("returnError", [errorCode](OXOrlixDelegate& host) { host.orlixError(errorCode); });
}

void OXSession::returnPaymentFailedWithTransactionReference(const std::string& reference) {
  end("returnPaymentFailedWithTransactionReference", [reference](OXOrlixDelegate& host) {
    host.orlixPaymentFailedWithTransactionReference(reference);
  });
}

void OXSession::returnInvalidCode() {
  end("returnInvalidCode", [](OXOrlixDelegate& host) { host.orlixInvalidCode(); });
}

}  // namespace orlix
