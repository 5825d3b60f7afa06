// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/Walk.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/TableView.h"
#include "tests/phone/WalkOffers.h"

// How a walk goes: what is there, what the server answers, and the way to the end. What the user
// does is in WalkUser.cpp, what the host and the phone do in WalkHost.cpp, the rules are in
// WalkRules.cpp.

namespace orlix::test {

using namespace std::chrono_literals;

namespace {

/// A run to the end of one event takes a few dozen steps.
constexpr std::uint64_t kMostSteps = 20'000;

}  // namespace

Walk::Walk(Chooser chooser, bool preemptive) : preemptive_(preemptive) {
  MemoryHostSettings settings;
  settings.install = installOrlixKit;
  settings.chooser = std::move(chooser);
  settings.preemptive = preemptive;
  settings.adapt = [this](Ports& ports) {
    server_->setClock(ports.clock);
    ports.httpClient = server_;
    ports.log = log_;
    ports.backgroundQueues = queues_ = std::make_shared<TroubledQueues>(ports.backgroundQueues);
    ports.userDefaults = store_ = std::make_shared<TroubledStore>(ports.userDefaults);
  };
  host_ = std::make_unique<MemoryHost>(std::move(settings));
  host_->bundle().add("CountryCellCodes", "plist",
                      toBytes("<plist><array><string>South Africa,ZA,27</string></array></plist>"));
  host_->world().setStepLimit(kMostSteps);
  host_->world().setOnMainWait([this](const std::string& what) {
    if (!mainMayWait_) {
      breakRule("(f) the main thread " + what);
    }
  });
  queues_->onFailure = [this] {
    // The failed request is not known here. Assume a lookup, whose failure leaves the user least.
    cause_ = hasFlow() && current().resent ? "purchase" : "lookup";
  };
  server_->onSent = [this](HeldRequest& request) { return requestSent(request); };
  server_->onCancelled = [this](const HeldRequest& request) {
    if (request.flow == current_) {
      noteAnswer(request, "lost");  // the library has waited long enough
    }
  };
  server_->onActivated = [this](const HeldRequest& request, const std::string& token) {
    tokens_[token] = {request.system, wipesAtSending_[request.number]};
  };
  host_->application().setObserver(this);
  Scene other;
  other.windows.push_back(std::make_shared<Window>(Host::current().application()));
  other.windows.back()->setRootViewController(otherRoot_);
  host_->application().connectedScenes.push_back(other);
  otherRoot_->loadViewIfNeeded();
}

Walk::~Walk() {
  if (host_) {
    host_->application().setObserver(nullptr);
    host_->shutdown();
  }
}

// What is there.

std::vector<Walk::Controller> Walk::chain(const Controller& root) {
  std::vector<Controller> found;
  for (Controller next = root; next && !next->isBeingDismissed();
       next = next->presentedViewController()) {
    found.push_back(next->visibleChild() ? next->visibleChild() : next);
  }
  return found;
}

std::vector<std::shared_ptr<AlertController>> Walk::alerts() const {
  std::vector<std::shared_ptr<AlertController>> found;
  for (const Controller& root : roots()) {
    for (const Controller& one : chain(root)) {
      if (auto alert = std::dynamic_pointer_cast<AlertController>(one)) {
        found.push_back(std::move(alert));
      }
    }
  }
  return found;
}

Walk::Controller Walk::screen() const {
  Controller found;
  if (hasFlow() && current().controller) {
    for (const Controller& one : chain(current().controller)) {
      found = one->identifier().empty() ? found : one;
    }
  }
  return found;
}

/// The screen on top, but for a request for a message: it is sent in the background, when the
/// screen that asks may be covered already by the one for the code.
Walk::Controller Walk::asker(const std::string& kind) const {
  const Controller shown = screen();
  const Controller below = shown ? shown->presentingViewController() : nullptr;
  const bool isCovered = kind == "sms" && below && below->identifier() == "Activation";
  return isCovered ? below : shown;
}

bool Walk::isShown(const void* controller) const {
  for (const Controller& root : roots()) {
    for (const Controller& one : chain(root)) {
      if (one.get() == controller) {
        return true;
      }
    }
  }
  return false;
}

std::string Walk::describe() const {
  std::string text;
  for (const Controller& root : roots()) {
    for (const Controller& one : chain(root)) {
      text += fmt::format("{} {}/", one->identifier(), static_cast<const void*>(one.get()));
    }
    text += '|';
  }
  text += indicator().visible() ? indicator().status() : "";
  for (const Flow& one : flows_) {
    text += std::to_string(one.app->heard.size());
  }
  return text;
}

std::string Walk::picture() const {
  std::string text;
  for (const Controller& root : roots()) {
    for (const Controller& one : chain(root)) {
      const auto alert = std::dynamic_pointer_cast<AlertController>(one);
      text += (alert ? "\"" + alert->title() + "\"" : one->identifier()) + "/";
    }
    text += ' ';
  }
  text += indicator().visible() ? "[" + indicator().status() + "] " : "";
  for (const WalletServer::Request& one : server_->held()) {
    text += fmt::format("{}({}) ", one->kind, one->flow);
  }
  for (const Flow& one : flows_) {
    text += fmt::format("{}{} ", one.number, fmt::join(one.app->heard, "+"));
  }
  return text + (live() ? "live" : "over");
}

std::size_t Walk::unanswered(const std::vector<std::string>& kinds) const {
  return static_cast<std::size_t>(std::count_if(
      server_->held().begin(), server_->held().end(), [&](const WalletServer::Request& one) {
        return one->flow == current_ &&
               (kinds.empty() || std::count(kinds.begin(), kinds.end(), one->kind) > 0);
      }));
}

/// A purchase or its receipt is being waited for.
bool Walk::isPaying() const {
  return live() && (current().polling || unanswered({"purchase", "authenticate", "receipt"}) > 0);
}

/// Something will happen to the flow without the user.
bool Walk::goesOn() const {
  return hasFlow() && (unanswered({}) > 0 || current().polling || !animations_.empty() ||
                       host_->world().someoneSleeps());
}

// Events.

std::vector<Walk::Offer> Walk::offers() {
  offers_.clear();
  offerAnswers();
  if (host_->application().keyWindow) {
    offerTouches();
  }
  offerPage();
  offerEntries();
  offerHost();
  offerTrouble();
  for (Offer& one : offers_) {
    for (const std::string& text : excluded) {
      one.weight = has(one.name, text) ? 0 : one.weight;
    }
  }
  return std::move(offers_);
}

bool Walk::happen(const std::string& name) {
  const bool settle = !name.ends_with(" &");
  const std::string event = settle ? name : name.substr(0, name.size() - 2);
  if (event.ends_with(" in the end")) {
    goOn(event.starts_with("pay"));
    return true;
  }
  only_ = &event;
  const std::vector<Offer> found = offers();
  only_ = nullptr;
  if (found.empty()) {
    return false;
  }
  happen(found.front(), settle);
  return true;
}

void Walk::happen(const Offer& offer, bool settles) {
  sentNow_.clear();
  answersLeftScreen_ = false;
  paymentIsLost_ = paymentIsLost_ && !wasSettled_;
  runLogged(offer.happen);
  if (!wasSettled_ || !settles) {
    questions_.clear();  // two events at once: not known which of them changed what
  }
  if (settles) {
    settle();
  }
  wasSettled_ = settles;
}

void Walk::happenAtOnce(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    host_->later({}, [this, name] {
      for (const Offer& one : offers()) {
        if (one.name == name) {
          one.happen();
          questions_.clear();
        }
      }
    });
  }
  settle();
}

void Walk::offerAnswers() {
  std::map<std::string, std::vector<WalletServer::Request>> byKind;
  for (const WalletServer::Request& one : server_->held()) {
    byKind[one->kind].push_back(one);
  }
  for (const auto& [kind, requests] : byKind) {
    for (const WalletServer::Request& request : {requests.front(), requests.back()}) {
      const std::string which = request == requests.front() ? kind : kind + " newest";
      const std::vector<std::string>& answers = WalletServer::answersTo(kind);
      for (const std::string& how : answers) {
        offer(how == answers.front() ? kUsual
              : how == "lost"        ? 0.4
                                     : 0.6,
              which + ": " + how, [this, request, how] { answer(request, how); });
      }
      if (requests.size() == 1) {
        break;
      }
    }
  }
}

void Walk::answer(const WalletServer::Request& request, const std::string& wanted) {
  const std::string& kind = request->kind;
  const std::string how = server_->isForgotten(*request) && wanted != "lost" ? "403" : wanted;
  if (!live() || request->flow != current_) {
    changesNothing("(b) an answer to a former flow changes something: " + kind);
  } else {
    const std::shared_ptr<void> asker = request->asker.lock();
    const bool findsFirstScreen = kind == "session" || kind == "lookup" || kind == "list";
    const bool isPayment =
        kind == "purchase" || kind == "authenticate" || kind == "receipt" || kind == "confirm";
    const bool isLeft = !asker || !isShown(asker.get());
    if (queues_->failures > 0) {
      // What follows from the answer may fail for want of a thread.
    } else if (isLeft && !findsFirstScreen && !isPayment) {
      changesNothing("(c) an answer to a screen that was left changes something: " + kind);
      answersLeftScreen_ = wasSettled_;
    } else if (request->late && (how == "ok" || how == "variable")) {
      changesNothing("(c) an answer to a screen that was left leads to another screen: " + kind);
    } else if (isPaying() && kind != "session" && !isPayment) {
      changesNothing("(e) an answer changes the screen during a payment: " + kind);
    }
    noteAnswer(*request, how);
  }
  notePurchase(*request, how);
  server_->answer(request, how);
}

/// Also of a flow that is over.
void Walk::notePurchase(const HeldRequest& request, const std::string& how) {
  if (request.flow < 0) {
    return;
  }
  auto& purchases = flows_[static_cast<std::size_t>(request.flow)].purchases;
  if (request.kind == "purchase" || request.kind == "authenticate") {
    // Sent again after a lost session, it is the same purchase.
    std::erase_if(purchases, [&request](const auto& one) {
      return one.first < request.number && one.second == "403";
    });
    purchases[request.number] = how;
  } else if (request.kind == "receipt" && !purchases.empty() && (how == "ok" || how == "failed")) {
    purchases.rbegin()->second = "receipt: " + how;
  }
}

/// Of several requests that fail at once the payment's is offered first.
void Walk::noteFailure(const std::string& kind) {
  const bool isPayment = kind == "purchase" || kind == "authenticate" || kind == "receipt";
  cause_ = isPayment || !paymentIsLost_ ? kind : cause_;
  paymentIsLost_ = paymentIsLost_ || isPayment;
}

void Walk::noteAnswer(const HeldRequest& request, const std::string& how) {
  Flow& flow = current();
  const std::string& kind = request.kind;
  if (how == "403" && request.session == server_->newestSession(flow.libKey) &&
      flow.refusedSessions.insert(request.session).second) {
    ++flow.startsAllowed;
  }
  if (how == "403") {
    flow.refusedKind = kind;
    cause_ = paymentIsLost_ ? cause_ : kind;
    flow.lookupsAreMixed = flow.lookupsAreMixed || kind == "lookup";
  } else if (how == "lost" && kind != "session") {
    noteFailure(kind);
  }
  if (kind == "session") {
    // A request that was refused with 403 fails with the session that was to replace its own.
    const std::string refused = std::exchange(flow.refusedKind, "");
    if (how != "ok") {
      noteFailure(refused.empty() ? kind : refused);
      flow.startsAllowed += how == "lost" ? 1 : 0;
      flow.silent = flow.silent || (how == "refused" && refused.empty());
    }
  } else if (kind == "lookup" && (how == "nothing" || how == "unusable")) {
    flow.silent = flow.silent || flow.lookupRetried || !has(describe(), "Waiting");
    flow.lookupsAreMixed = true;
  } else if (kind == "lookup" && ((how == "ok" && !flow.fixesAmount) || how == "variable")) {
    flow.newestLookup = std::max(flow.newestLookup, request.number);
  } else if (kind == "receipt") {
    flow.polling = how == "none";
  } else if (kind == "purchase" || kind == "authenticate") {
    flow.resent = how == "403";
    flow.refusals = how == "403" ? flow.refusals + 1 : 0;
    flow.accepted = how == "ok" && kind == "purchase";
    flow.pollsSince = host_->clock().steadyNow();
  }
}

// To the end.

void Walk::clearTroubles() {
  armed_.clear();
  forgetful_ = false;
  queues_->failures = animationsToHold_ = 0;
  store_->state = TroubledStore::State::works;
  if (!host_->application().keyWindow) {
    setWindow(true);
  }
  while (!animations_.empty()) {
    endAnimation(false);
  }
  if (const auto view = page()) {
    view->releaseScripts();
  }
  settle();
}

bool Walk::takeOneStep(bool pays) {
  if (!server_->held().empty()) {
    const WalletServer::Request request = server_->held().front();
    answer(request, WalletServer::answersTo(request->kind).front());
    return true;
  }
  if (current().polling || host_->world().someoneSleeps()) {
    host_->runFor(2s);
    return true;
  }
  for (const auto& alert : alerts()) {
    if (alert->presentedViewController()) {
      continue;  // covered by the next one
    }
    const auto& actions = alert->actions();
    const bool decides = actions.size() > 1 && pays && actions.back().title == "Retry";
    press(alert, (decides ? actions.back() : actions.front()).title);
    return true;
  }
  const Controller shown = screen();
  if (!shown || shown->identifier() == "Waiting") {
    return false;
  }
  const bool isIssuers =
      shown->identifier() == "SecureCode" || shown->identifier() == "3DAuthSecureCode";
  if (pays && isIssuers && page() && page()->loads() > 0 && has(page()->html(), "PAGE-") &&
      !indicator().visible()) {
    returnPage();
    return true;
  }
  if (pays && isIssuers && page() && page()->loads() > 0) {
    page()->finishNavigation("<p>A page</p>");
    settle();
    returnPage();
    return true;
  }
  const bool hasNoCard = shown->identifier() == "Product" &&
                         shown->outletNamed("cardHintView")->shownText() == "Add Card";
  const std::vector<std::string> ways =
      pays ? std::vector<std::string>{hasNoCard ? "cardAction" : "proceedAction", "DoneClicked",
                                      "backAction", "cancelAction"}
           : std::vector<std::string>{"cancelAction", "declineAction", "back", "backAction",
                                      "DoneClicked"};
  if (const auto table = std::dynamic_pointer_cast<TableView>(shown->outletNamed("tableView"));
      table && pays && table->rowCount() > 0) {
    table->select(0);
    return true;
  }
  for (const std::string& way : ways) {
    if (shown->hasAction(way)) {
      touch(shown, way, false);
      return true;
    }
  }
  return false;
}

void Walk::goOn(bool pays) {
  clearTroubles();
  constexpr int kPatience = 40;
  for (int step = 0; step < 2 * kPatience && live() && broken_.empty(); ++step) {
    sentNow_.clear();
    answersLeftScreen_ = false;
    const bool took = takeOneStep(pays && step < kPatience);
    settle();
    if (!took) {
      break;
    }
  }
  if (live() && !current().silent && broken_.empty()) {
    breakRule(std::string("(d) the user cannot ") + (pays ? "pay: " : "leave: ") + describe());
  }
}

}  // namespace orlix::test
