// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXOrlix.h"

#include <array>
#include <charconv>
#include <cmath>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/PurchaseLedger.h"
#include "orlixkit/checkout/ScreenChange.h"
#include "orlixkit/checkout/SuggestedMsisdn.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/protocol/LocationUtil.h"
#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/security/OMStorage.h"

namespace orlix {

namespace {

const std::string kCustomerIdKey = "customerId";

/// The fewest digits that read back as the same number, never with an exponent.
std::optional<std::string> amountText(double amount) {
  if (!(amount > 0.0) || !std::isfinite(amount)) {
    return std::nullopt;
  }
  std::array<char, 400> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), amount, std::chars_format::fixed);
  return std::string(text.data(), end.ptr);
}

void wipeWallet() {
  OMStorage storage(OXUtil::storageKeyForItem("data"));
  OMVello::sharedOMVello().resetCredentials(storage);
}

/// Texts that cannot be written into a request would fail it each time it is retried.
void requireUtf8(const std::string& text, const std::string& name) {
  if (!isUtf8(text)) {
    throw std::invalid_argument("OXOrlix: the " + name + " is not valid UTF-8");
  }
}

}  // namespace

/// What the three entry families have in common, and what sets each of them apart.
struct OXOrlix::Entry {
  std::string apiKey;
  OXSystem system;
  Controller controller;
  Delegate delegate;
  std::optional<PreMSISDN> preMSISDN;
  std::optional<CustomerId> customerId;
  std::function<void(OXSession&)> fill;
};

std::shared_ptr<OXOrlix> OXOrlix::make() { return std::make_shared<OXOrlix>(); }

void OXOrlix::begin(const Entry& entry) {
  requireUtf8(entry.apiKey, "API key");
  try {
    start(entry);
  } catch (const std::bad_alloc&) {
    abandonStart();
    throw;
  } catch (const std::system_error&) {
    abandonStart();  // no thread for the session start
    throw;
  }
}

void OXOrlix::abandonStart() {
  waitingController_.reset();
  runLogged([] { OXSession::currentSession()->abandon(); });
}

void OXOrlix::start(const Entry& entry) {
  checkCustomerId(entry.customerId);
  if (!endFormerFlow(entry.controller)) {
    return;
  }
  OXSession::reset();
  const std::shared_ptr<OXSession> session = OXSession::currentSession();
  purchases_ = session->purchases();
  session->presentingController = entry.controller;
  session->system = entry.system;
  session->delegate = entry.delegate;
  entry.fill(*session);
  if (entry.preMSISDN) {
    session->preMSISDN = getSuggestedMSISDN(entry.preMSISDN->value);
  }
  if (!waitingController_) {
    showLoadingDialogFromController(entry.controller);
  }
  if (session->isLive()) {
    OMVello::sharedOMVello().initSessionWithLibKey(entry.apiKey, entry.system, shared_from_this());
  }
}

/// Dismisses the replaced flow's screens and alerts: their buttons would do nothing any more. The
/// waiting screen of this facade stays, the new flow waits on it as well. False when the observer
/// of what is shown, which is the host's code, has made an entry call meanwhile: that one is the
/// later one, and counts.
bool OXOrlix::endFormerFlow(const Controller& controller) {
  const std::shared_ptr<OXSession> former = OXSession::currentSession();
  const auto isStillTheLast = [&former] { return OXSession::currentSession() == former; };
  const bool wasLive = former->isLive();
  former->flow()->end();
  LocationUtil::sharedLocationUtil().stopLocationDetection();
  OXUtil::indicator().dismiss();
  if (isStillTheLast()) {
    former->closeAlerts();
  }
  if (isStillTheLast()) {
    forgetWaitingScreenOfAnotherPlace(controller);
  }
  // Of a flow that is over there may be screens on their way out; what else is there is the host's.
  const Controller below = isStillTheLast() ? former->presentingController : nullptr;
  if (below && below->presentedViewController() && (wasLive || former->hasScreens())) {
    const bool waits = below->presentedViewController() == waitingController_;
    (waits ? waitingController_ : below)->dismiss(false);
  }
  return isStillTheLast();
}

/// A waiting screen that is kept from an earlier call serves this one only where it is: over the
/// same controller, or nowhere any more, on the same host.
void OXOrlix::forgetWaitingScreenOfAnotherPlace(const Controller& controller) {
  if (!waitingController_) {
    return;
  }
  if (hostNumber_ != Host::current().number()) {
    waitingController_.reset();
    return;
  }
  const Controller presenter = waitingController_->presentingViewController();
  if (presenter && (presenter != controller || waitingController_->isBeingDismissed())) {
    waitingController_.reset();
    presenter->dismiss(false);
  }
}

void OXOrlix::checkout(const CheckoutRequest& request) {
  requireUtf8(request.code, "code");
  begin({request.apiKey, request.system, request.controller, request.delegate, request.preMSISDN,
         request.customerId, [&request](OXSession& session) {
           session.code = request.code;
           session.inAmount = amountText(request.amount);
         }});
}

void OXOrlix::preRegister(const EntryRequest& request) {
  begin({request.apiKey, request.system, request.controller, request.delegate, request.preMSISDN,
         request.customerId, [](OXSession& session) { session.preRegister = true; }});
}

void OXOrlix::walletManagement(const EntryRequest& request) {
  begin({request.apiKey, request.system, request.controller, request.delegate, request.preMSISDN,
         request.customerId, [](OXSession& session) { session.walletManagement = true; }});
}

PurchaseStatus OXOrlix::purchaseStatus() const {
  return purchases_ ? purchases_->status() : PurchaseStatus{};
}

std::string OXOrlix::getSuggestedMSISDN(const std::string& number) {
  return suggestedMsisdn(number);
}

std::string OXOrlix::getLibVelloApiVersion() { return KCVelloConnection::getApiVersion(); }

void OXOrlix::reset() {
  wipeWallet();
  OXUtil::showAlertWithTitle("Deregister", "Succesfully deregistered.");
}

void OXOrlix::deregisterUser() { wipeWallet(); }

void OXOrlix::saveCustomerId(const std::string& customerId) {
  Host::current().ports().userDefaults->setValue(kCustomerIdKey, customerId);
}

void OXOrlix::checkCustomerId(const std::optional<CustomerId>& customerId) {
  if (!customerId) {
    return;
  }
  const auto stored = Host::current().ports().userDefaults->stringForKey(kCustomerIdKey);
  log(stored.value_or("(null)"));
  if (stored != customerId->value) {
    deregisterUser();
    saveCustomerId(customerId->value);
  }
}

void OXOrlix::showLoadingDialogFromController(const Controller& controller) {
  waitingController_ = Host::current().application().storyboard().make("Waiting");
  hostNumber_ = Host::current().number();
  present(waitingController_, controller);
}

void OXOrlix::showScreen(const std::string& identifier, const Controller& fromController) {
  present(Host::current().application().storyboard().make(identifier), fromController);
}

void OXOrlix::present(const Controller& screen, const Controller& fromController) {
  if (!screen || !fromController) {
    return;
  }
  transitioningDelegate_ = presentAsCard(*screen);
  const auto session = OXSession::currentSession();
  // What an earlier flow left there, or is about to take away, would be in the way.
  cutPresented(session, fromController,
               [screen, fromController] { fromController->present(screen, true); });
}

void OXOrlix::hideLoadingDialog(const Controller& controller) {
  const Controller presenter = controller ? controller->presentingViewController() : nullptr;
  if (presenter) {
    presenter->dismiss(true);
  }
}

void OXOrlix::velloNotActivated() {
  if (!waitingController_) {
    return;
  }
  const auto session = OXSession::currentSession();
  const Task goOn = [self = shared_from_this(), session] {
    if (session->isLive()) {
      self->waitingController_.reset();
      self->showScreen("Activation", session->presentingController);
    }
  };
  if (const Controller presenter = waitingController_->presentingViewController()) {
    presenter->dismiss(true, goOn);
  } else {
    // A waiting screen kept from an earlier flow and no longer presented.
    goOn();
  }
}

void OXOrlix::velloSessionEstablished() { loadCodeInfo(waitingController_); }

}  // namespace orlix
