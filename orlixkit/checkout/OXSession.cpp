// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXSession.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/PurchaseInputs.h"
#include "orlixkit/checkout/ScreenChange.h"
#include "orlixkit/checkout/SessionScreen.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/protocol/LocationUtil.h"
#include "orlixkit/protocol/OMVello.h"

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

bool fixesAmount(const std::optional<MTCodeInfo>& info) {
  return info && info->amountString && !info->amountString->empty();
}

std::shared_ptr<OXSession> OXSession::currentSession() {
  CurrentSession& holder = current();
  const std::lock_guard guard(holder.lock);
  return holder.session;
}

void OXSession::reset() {
  auto session = std::make_shared<OXSession>();
  // Ended first: a background task must not find the replaced flow live beside the new one.
  currentSession()->flow_->end();
  {
    CurrentSession& holder = current();
    const std::lock_guard guard(holder.lock);
    std::swap(holder.session, session);
  }
  session->release();
}

/// A task that is still under way may hold the session for a while; what the session held goes now.
void OXSession::release() {
  closeAlerts();
  whenNotPaying_.clear();
  presentingController.reset();
  delegate.reset();
  delegate3DSecure.reset();
  transitioningDelegate.reset();
  cardInfoResponse.reset();
  cvv.reset();
}

std::optional<KCVelloConnection> OXSession::connection() const {
  const std::shared_ptr<KCVelloConnection> client = OMVello::sharedOMVello().connection();
  return client ? std::optional(client->within({.flow = flow_})) : std::nullopt;
}

bool OXSession::isLiveFor(const std::string& operation) const {
  if (!isLive()) {
    log("OrlixKit: The checkout is over; ignoring " + operation + ".");
    return false;
  }
  return true;
}

bool OXSession::isNotVariableAmount() const { return inAmount && fixesAmount(codeInfo); }

void OXSession::show(const std::string& identifier, const Prepare& prepare) {
  if (paying_) {
    log("OrlixKit: A payment is in progress; ignoring the screen " + identifier + ".");
    return;
  }
  replaceScreen(identifier, prepare);
}

/// Part of a payment, and so not kept back by it.
void OXSession::showIssuersPage(const std::string& identifier) { replaceScreen(identifier, {}); }

void OXSession::replaceScreen(const std::string& identifier, const Prepare& prepare) {
  if (!isLiveFor("the screen " + identifier) || !presentingController) {
    return;
  }
  ++screenChanges_;
  cutPresented(shared_from_this(), presentingController,
               [this, identifier, prepare] { present(identifier, prepare); });
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
  transitioningDelegate = presentAsCard(*screen);
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
void OXSession::showSecureCodeScreen() { showIssuersPage("SecureCode"); }
void OXSession::show3DAuthSecureCodeScreen() { showIssuersPage("3DAuthSecureCode"); }
void OXSession::showMsisdnRelinkScreen() { show("MsisdnRelink"); }
void OXSession::showCardValidationScreen() { show("CardValidation"); }
void OXSession::showTemsAndConditionChangeScreen() { show("TermsAndConditionChange"); }
void OXSession::showWalletManagementScreen() { show("WalletManagement"); }

std::vector<std::shared_ptr<SessionScreen>> OXSession::shownScreens() const {
  std::vector<std::shared_ptr<SessionScreen>> screens;
  const auto first =
      presentingController ? presentingController->presentedViewController() : nullptr;
  for (auto next = first; next; next = next->presentedViewController()) {
    if (auto screen = std::dynamic_pointer_cast<SessionScreen>(next)) {
      screens.push_back(std::move(screen));
    }
  }
  return screens;
}

void OXSession::dataChanged() {
  for (const auto& screen : shownScreens()) {
    handInputsTo(screen);
    screen->sessionDataChanged();
  }
}

bool OXSession::isDataShown() const {
  const auto screens = shownScreens();
  return std::any_of(screens.begin(), screens.end(),
                     [](const auto& screen) { return screen->showsSessionData(); });
}

bool OXSession::hasScreens() const {
  auto next = presentingController ? presentingController->presentedViewController() : nullptr;
  // Only the library's screens have an identifier.
  while (next && next->identifier().empty()) {
    next = next->presentedViewController();
  }
  return next != nullptr;
}

void OXSession::endPayment() {
  paying_ = false;
  for (const auto& [source, task] : std::exchange(whenNotPaying_, {})) {
    if (isLive()) {
      runLogged([this, &task = task] { task(*this); });
    }
  }
}

void OXSession::whenNotPaying(const std::string& source, DataTask task) {
  if (!paying_) {
    task(*this);
    return;
  }
  std::erase_if(whenNotPaying_, [&source](const auto& entry) { return entry.first == source; });
  whenNotPaying_.emplace_back(source, std::move(task));
}

void OXSession::keepTrackOf(const std::shared_ptr<AlertController>& alert) {
  std::erase_if(alerts_, [](const auto& entry) { return entry.expired(); });
  alerts_.push_back(alert);
}

void OXSession::closeAlerts() {
  connectionAlerts_->close();
  for (const auto& entry : std::exchange(alerts_, {})) {
    if (const std::shared_ptr<AlertController> alert = entry.lock()) {
      alert->withdraw();
    }
  }
}

void OXSession::end(const Ending& ending) {
  if (!isLiveFor(ending.operation)) {
    return;
  }
  const bool hasPlace = presentingController != nullptr;
  settle(ending);
  OXUtil::indicator().dismiss();
  // Not from within: a dismissal may be cut short inside an entry call, and the host may make one
  // in its callback.
  const Task deliver = [self = shared_from_this()] {
    self->closeAlerts();
    Host::current().ports().mainQueue->async([self] { self->deliverPendingCallback(); });
  };
  if (hasPlace && !presentingController) {
    // The indicator's observer has made an entry call, which has dismissed the screens.
    LocationUtil::sharedLocationUtil().stopLocationDetection();
    deliver();
  } else {
    leave(deliver);
  }
}

/// From here on the callback is due, whatever becomes of the steps up to it.
void OXSession::settle(const Ending& ending) {
  pendingCallback_ = [receiver = delegate, tell = ending.tell] {
    if (receiver) {
      tell(*receiver);
    }
  };
  flow_->end();
  whenNotPaying_.clear();
  // The payment screen that waited for an authentication, with the CVV in its field; the number of
  // a card that was to be linked. The session itself stays until the next flow.
  delegate3DSecure.reset();
  cardInfoResponse.reset();
  cvv.reset();
}

void OXSession::deliverPendingCallback() {
  if (const Task callback = std::exchange(pendingCallback_, {})) {
    callback();
  }
}

void OXSession::fail() {
  if (isLive()) {
    settle({"fail", [](OXOrlixDelegate& host) { host.orlixError(2); }});
  }
  if (pendingCallback_) {
    leaveAtOnce();
  }
}

void OXSession::abandon() {
  flow_->end();
  pendingCallback_ = {};
  leaveAtOnce();
}

void OXSession::leaveAtOnce() {
  LocationUtil::sharedLocationUtil().stopLocationDetection();
  closeAlerts();
  if (!presentingController) {
    OXUtil::indicator().dismiss();
    return;
  }
  presentingController->dismiss(false, [self = shared_from_this()] {
    // Only now: a screen that is being presented receives `viewDidAppear` before its dismissal.
    OXUtil::indicator().dismiss();
    self->deliverPendingCallback();
  });
}

void OXSession::leave(Task then) {
  LocationUtil::sharedLocationUtil().stopLocationDetection();
  if (presentingController) {
    presentingController->dismiss(true, std::move(then));
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
  end({"returnUserDidCancel", &OXOrlixDelegate::orlixUserDidCancel});
}

void OXSession::returnUserRegistered() {
  end({"returnUserRegistered", &OXOrlixDelegate::orlixUserRegistered});
}

void OXSession::returnUserDoneWithWallet() {
  end({"returnUserDoneWithWallet", &OXOrlixDelegate::orlixUserCompletedWallet});
}

void OXSession::returnPaymentSucceededWithTransactionReference(const std::string& reference) {
  end({"returnPaymentSucceededWithTransactionReference", [reference](OXOrlixDelegate& host) {
         host.orlixPaymentSucceededWithTransactionReference(reference);
       }});
}

void OXSession::returnError(int errorCode) {
  end({"returnError", [errorCode](OXOrlixDelegate& host) { host.orlixError(errorCode); }});
}

void OXSession::returnPaymentFailedWithTransactionReference(const std::string& reference) {
  end({"returnPaymentFailedWithTransactionReference", [reference](OXOrlixDelegate& host) {
         host.orlixPaymentFailedWithTransactionReference(reference);
       }});
}

void OXSession::returnInvalidCode() {
  end({"returnInvalidCode", &OXOrlixDelegate::orlixInvalidCode});
}

}  // namespace orlix
