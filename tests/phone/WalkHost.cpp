// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include <fmt/format.h>

#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/OMStorage.h"
#include "orlixkit/security/PinBlock.h"
#include "orlixkit/ui/AlertController.h"
#include "tests/phone/Walk.h"
#include "tests/phone/WalkOffers.h"

// What the host application does in a walk, and what befalls its phone.

namespace orlix::test {

using namespace std::chrono_literals;

namespace {

std::vector<std::string> everyPair(const std::vector<std::string>& first,
                                   const std::vector<std::string>& second) {
  std::vector<std::string> pairs;
  for (const std::string& one : first) {
    for (const std::string& other : second) {
      pairs.push_back(one + other);
    }
  }
  return pairs;
}

const std::vector<std::string>& entryNames() {
  static const std::vector<std::string> names =
      everyPair(everyPair({"checkout", "pre-register", "wallet"}, {"", " again"}),
                {"", " as A", " as B", " live", " elsewhere", " for 10"});
  return names;
}

/// What the host's code does, and where.
const std::vector<std::string>& hookNames() {
  static const std::vector<std::string> names =
      everyPair({"at progress: ", "at present: ", "at dismiss: ", "at animate: ", "at outcome: "},
                {"throw", "cancel", "pay", "run the main queue", "checkout", "checkout again",
                 "wallet", "wallet again", "pre-register", "pre-register again"});
  return names;
}

std::string customerOf(const std::string& entry) {
  return has(entry, " as A") ? "A" : has(entry, " as B") ? "B" : "";
}

}  // namespace

void Walk::offerEntries() {
  const double weight = live() ? 0.02 : kNow;
  for (const std::string& name : entryNames()) {
    offer(name.starts_with("checkout") ? 3 * weight : weight, name, [this, &name] { enter(name); });
  }
}

void Walk::enter(const std::string& name) {
  const int former = current_;
  const bool wasLive = live();
  const bool hasWallet = hasFlow();  // before the first start of a process there is none to wipe
  const std::shared_ptr<OXSession> sessionBefore = OXSession::currentSession();
  std::vector<std::weak_ptr<ViewController>> before;
  for (const Controller& root : roots()) {
    for (const Controller& one : chain(root)) {
      const auto alert = std::dynamic_pointer_cast<AlertController>(one);
      const bool isHosts = one == root || (alert && alert->title() == "Deregister");
      if (!isHosts && !(one->identifier() == "Waiting" && has(name, " again"))) {
        before.emplace_back(one);
      }
    }
  }
  Flow& made = flows_.emplace_back();
  made.number = static_cast<int>(flows_.size()) - 1;
  made.libKey = fmt::format("key-{}", made.number);
  made.code = fmt::format("C-{}", made.number);
  made.msisdn = fmt::format("082123456{}", made.number % 10);
  made.system = has(name, " live") ? kLiveSystem : kTestSystem;
  made.fixesAmount = name.starts_with("checkout") && has(name, " for 10");
  made.controller = has(name, " elsewhere") ? otherRoot_ : host_->root();
  made.silent = goneWindow_ != nullptr;  // a first screen or an alert may have no place
  made.app->onOutcome = [this, number = made.number] { heard(number); };
  const std::string customer = customerOf(name);
  const bool customerChanges =
      !customer.empty() && host_->userDefaults()->stringForKey("customerId") != customer;
  current_ = made.number;
  bool failed = false;
  wipe(
      [&] {
        ++entriesRunning_;
        try {
          callEntry(name, made);
        } catch (const std::exception&) {
          failed = true;
        }
        --entriesRunning_;
      },
      customerChanges && hasWallet);
  const bool overtaken = current_ != made.number;
  if (failed && !overtaken && OXSession::currentSession() == sessionBefore) {
    made.replaced = true;  // nothing has begun
    current_ = former;
    return;
  }
  if (former >= 0) {
    (wasLive ? flows_[static_cast<std::size_t>(former)].replaced
             : flows_[static_cast<std::size_t>(former)].ended) = true;
  }
  made.replaced = made.replaced || overtaken || failed;
  former_.insert(former_.end(), before.begin(), before.end());
}

void Walk::callEntry(const std::string& name, Flow& flow) {
  if (!has(name, " again")) {
    facade_ = OXOrlix::make();
  }
  const std::shared_ptr<OXOrlix> facade = facade_;
  flow.facade = facade;
  const std::string customer = customerOf(name);
  const std::optional<CustomerId> customerId =
      customer.empty() ? std::nullopt : std::optional(CustomerId{customer});
  const std::optional<PreMSISDN> number{PreMSISDN{flow.msisdn}};
  if (name.starts_with("checkout")) {
    facade->checkoutWithCode(flow.code, has(name, " for 10") ? 10 : 0, flow.libKey, flow.system,
                             flow.controller, flow.app, number, customerId);
  } else if (name.starts_with("wallet")) {
    facade->WalletManagement(flow.libKey, flow.system, flow.controller, flow.app, number,
                             customerId);
  } else {
    facade->preRegister(flow.libKey, flow.system, flow.controller, flow.app, number, customerId);
  }
}

/// A call that makes the device unknown to the wallet of the present system.
void Walk::wipe(const Task& call, bool wipes) {
  const std::int64_t system = OMVello::sharedOMVello().system();
  if (wipes && store_->state == TroubledStore::State::works) {
    ++wipes_[system == 0 ? 0 : 1];
  }
  call();
}

void Walk::offerHost() {
  offer(kRare / 3, "reset", [this] { wipe([this] { facade_->reset(); }, hasFlow()); });
  offer(kRare / 3, "deregister",
        [this] { wipe([this] { facade_->deregisterUser(); }, hasFlow()); });
  if (!alerts().empty()) {
    offer(kRare, "the host removes the alert", [this] { hostRemoves(true); });
  }
  if (screen()) {
    offer(kRare / 5, "the host removes the screens", [this] { hostRemoves(false); });
  }
  const bool hasWindow = host_->application().keyWindow != nullptr;
  offer(hasWindow ? kRare / 5 : kUsual, hasWindow ? "the window goes" : "the window comes back",
        [this, hasWindow] { setWindow(!hasWindow); });
  for (const std::string& name : hookNames()) {
    offer(armed_.empty() ? kRare / 12 : 0, name, [this, &name] {
      const std::size_t colon = name.find(": ");
      armed_[name.substr(3, colon - 3)] = name.substr(colon + 2);
    });
  }
  offer(kRare, "hold the next animation", [this] { ++animationsToHold_; });
  if (!animations_.empty()) {
    offer(kNow, "an animation ends", [this] { endAnimation(false); });
    offer(kRare, "the newest animation ends", [this] { endAnimation(true); });
  }
  offer(kRare, "a location fix", [this] {
    LocationFix fix;
    fix.latitude = -26;
    host_->locationManager().sendFixes({fix});
  });
  offer(kRare, "no location", [this] { host_->locationManager().sendError("denied"); });
  offer(hasFlow() && current().polling ? kUsual : kRare, "2 s pass", [this] { host_->runFor(2s); });
  offer(kRare / 2, "60 s pass", [this] { host_->runFor(60s); });
}

void Walk::offerTrouble() {
  using State = TroubledStore::State;
  const auto store = [this](State state) { return [this, state] { store_->state = state; }; };
  if (store_->state == State::works) {
    offer(kRare / 5, "the store is full", store(State::full));
    offer(kRare / 10, "the store is locked", store(State::locked));
  } else {
    offer(kNow, "the store works", store(State::works));
  }
  offer(kRare / 5, "no thread", [this] { queues_->failures = 1; });
  offer(kRare / 10, "no threads", [this] { queues_->failures = 1000; });
  if (queues_->failures > 0) {
    offer(kNow, "threads again", [this] { queues_->failures = 0; });
  }
  if (forgetful_) {
    offer(kNow, "the server remembers sessions", [this] { forgetful_ = false; });
  } else {
    offer(kRare / 10, "the server forgets every session", [this] { forgetful_ = true; });
  }
  for (const char* how : {"ok", "403", "lost"}) {
    offer(kRare / 10, std::string("terms will be ") + how, [this, how] { termsAnswer_ = how; });
  }
  if (flows_.empty()) {
    offer(kUsual, "the server keeps one session", [this] { server_->keepOneSession(); });
    offer(kUsual, "the server knows the device", [this] { server_->knowDevice(); });
    offer(kUsual, "A has been enrolled", [this] { enrolBefore(); });
  }
}

/// As after a restart: the store holds a device token of the test system.
void Walk::enrolBefore() {
  DataStore store(PinBlock::nibblePackSerial(host_->device().vendorIdentifier()));
  OMStorage storage("test.data");
  PersistableObject record;
  record.ssToken = "token-0";
  store.save(storage, record);
  host_->userDefaults()->setValue("customerId", "A");
  tokens_[*record.ssToken] = {kTestSystem, 0};
}

/// What a lock screen does, or a host that takes its window back.
void Walk::hostRemoves(bool alertOnly) {
  if (hasFlow()) {
    current().silent = true;
  }
  Controller from = hasFlow() ? current().controller : nullptr;
  if (alertOnly) {
    from = alerts().back()->presentingViewController();
  }
  if (from) {
    from->dismiss(false);
  }
}

void Walk::setWindow(bool present) {
  Application& application = host_->application();
  if (!present && hasFlow()) {
    current().silent = true;
  }
  std::swap(application.connectedScenes, goneScenes_);
  std::swap(application.keyWindow, goneWindow_);
}

void Walk::endAnimation(bool newest) {
  const auto which = newest ? animations_.end() - 1 : animations_.begin();
  const Animation ended = *which;
  animations_.erase(which);
  ended.done();
}

// The host's code.

void Walk::act(const std::string& action) {
  if (action == "throw") {
    throw std::runtime_error("thrown by the host");
  }
  if (action == "run the main queue") {
    const int running =
        std::exchange(entriesRunning_, 0);  // what is called now is called from here
    host_->runUntilIdle();
    entriesRunning_ = running;
  } else if (action == "cancel" || action == "pay") {
    const Controller shown = screen();
    for (const char* name : {"cancelAction", "declineAction", "back", "proceedAction"}) {
      if (shown && shown->hasAction(name) && shown->hasAppeared() &&
          !shown->presentedViewController() && !indicator().blocksInput() &&
          (action == "pay") == (name == std::string("proceedAction"))) {
        touch(shown, name, true);
        return;
      }
    }
  } else {
    enter(action);
  }
}

void Walk::runHook(const std::string& hook) {
  const auto found = armed_.find(hook);
  if (found != armed_.end()) {
    const std::string action = found->second;
    armed_.erase(found);
    act(action);
  }
}

void Walk::heard(int number) {
  if (entriesRunning_ > 0) {
    breakRule("(a) the host is called back inside an entry call");
  }
  Flow& flow = flows_[static_cast<std::size_t>(number)];
  if (flow.replaced) {
    breakRule("(a) the host of a replaced flow is called back");
  }
  flow.ended = true;
  if (number == current_) {  // else the facade may be another flow's by now
    checkPurchaseStatus(flow);
  }
  runHook("outcome");
}

void Walk::didPresent(const Controller& controller) {
  mustExpire_.emplace_back(controller);
  if (hasFlow() && controller->identifier() == "Product") {
    current().sawProduct = true;
  }
  checkDeclared(controller);
  runHook("present");
}

void Walk::didDismiss(const Controller&) { runHook("dismiss"); }

void Walk::progressChanged(const ProgressIndicator&) { runHook("progress"); }

bool Walk::animate(const Controller& controller, Transition transition, const Task& done) {
  if (transition == Transition::presentation) {
    checkDeclared(controller);  // what the host does now may replace the screen below
  }
  runHook("animate");
  if (animationsToHold_ == 0) {
    return false;
  }
  --animationsToHold_;
  animations_.push_back({controller, done});
  return true;
}

}  // namespace orlix::test
