#include "tests/phone/Walk.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "orlixkit/platform/ui/AlertController.h"
#include "orlixkit/platform/ui/TableView.h"
#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/OMStorage.h"
#include "orlixkit/security/PinBlock.h"

// The events of a walk; the rules are in WalkRules.cpp.

namespace orlix::test {

using namespace std::chrono_literals;

namespace {

constexpr double kUsual = 6;
constexpr double kNow = 1;
constexpr double kRare = 0.15;
/// A run to the end of one event takes a few dozen steps.
constexpr std::uint64_t kMostSteps = 20'000;

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

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
    // Whose failure it is cannot be told; a lookup's leaves the user the fewest ways.
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
  other.windows.push_back(std::make_shared<Window>());
  other.windows.back()->rootViewController = otherRoot_;
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
  answersLeftScreen_ = paymentIsLost_ = false;
  runLogged(offer.happen);
  if (!wasSettled_ || !settles) {
    questions_.clear();  // two events at once: what either of them changes cannot be told apart
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
  server_->answer(request, how);
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
    flow.refusedKind = cause_ = kind;
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

void Walk::offerTouches() {
  for (const Controller& root : roots()) {
    const Controller shown = top(root);
    const bool isAnimated = !shown->hasAppeared() || shown->presentedViewController();
    if (isAnimated) {
      continue;  // touches are held back
    }
    if (const auto alert = std::dynamic_pointer_cast<AlertController>(shown)) {
      for (const AlertAction& action : alert->actions()) {
        offer(action.title == "Cancel" ? kNow : kUsual / 2, "alert: " + action.title,
              [this, alert, title = action.title] { press(alert, title); });
      }
    } else if (!shown->identifier().empty()) {
      offerTouchesOf(shown, kNow);
    }
  }
  for (const auto& [name, weak] : lastScreens_) {
    const Controller stray = weak.lock();
    if (stray && !isShown(stray.get())) {
      for (const std::string& action : stray->actionNames()) {
        offer(kRare / 5, "stray " + name + "." + action,
              [this, stray, action] { touch(stray, action, true); });
      }
    }
  }
}

void Walk::offerTouchesOf(const Controller& screen, double weight) {
  for (const std::string& action : screen->actionNames()) {
    if (indicator().blocksInput() && !screen->isReachableUnderMask(action)) {
      continue;
    }
    const bool leaves = has(action, "cancel") || has(action, "decline");
    const bool proceeds = has(action, "proceed");
    offer(weight * (proceeds ? kUsual
                    : leaves ? 0.3
                             : 0.5),
          screen->identifier() + "." + action,
          [this, screen, action] { touch(screen, action, false); });
  }
  const auto table = std::dynamic_pointer_cast<TableView>(screen->outletNamed("tableView"));
  for (std::size_t row = 0; table && !indicator().blocksInput() && row < table->rowCount(); ++row) {
    offer(weight, fmt::format("{}.row {}", screen->identifier(), row),
          [table, row] { table->select(row); });
    if (const auto button = table->cell(row).button) {
      offer(weight / 2, fmt::format("{}.delete {}", screen->identifier(), row),
            button->onTouchUpInside);
    }
  }
}

void Walk::fill(ViewController& screen) const {
  const std::map<std::string, std::string> texts{{"pinField", "1234"},
                                                 {"cvvField", "123"},
                                                 {"msisdnField", hasFlow() ? current().msisdn : ""},
                                                 {"codeField", "1234"},
                                                 {"cardNumberField", "4000123412341234"},
                                                 {"cardHolderField", "A N Other"},
                                                 {"expiryDateField", "12/40"},
                                                 {"dateOfBirthField", "01/02/1980"},
                                                 {"cardAccountField", "Savings"}};
  for (const std::string& name : screen.outletNames()) {
    const auto field = std::dynamic_pointer_cast<TextField>(screen.outletNamed(name));
    const auto text = texts.find(name);
    if (field && text != texts.end() && field->text().empty()) {
      field->setText(text->second);
    } else if (field && name == "inputAmountField" && field->text() == "0.00") {
      field->setText("12,50");
    }
  }
}

void Walk::touch(const Controller& screen, const std::string& action, bool stray) {
  fill(*screen);
  const std::string before = describe();
  const std::size_t sentBefore = server_->sent();
  const bool wasLive = live();
  if (screen->identifier() == "Product" && action == "proceedAction") {
    notePay(*screen, stray);
  }
  const bool leaves = has(action, "cancel") || has(action, "decline") || has(action, "back");
  if (leaves && !stray && wasLive && animations_.empty()) {
    afterwards([=, this] {
      if (live() && describe() == before && server_->sent() == sentBefore) {
        breakRule("(d) " + screen->identifier() + "." + action + " does nothing");
      }
    });
  }
  mainMayWait_ = screen->identifier() == "TermsAndConditionChange" && action == "proceedAction";
  runLogged([&] { screen->performAction(action); });
  mainMayWait_ = false;
}

/// The user presses PAY, or UNLOCK.
void Walk::notePay(ViewController& screen, bool stray) {
  if (!live() || !isShown(&screen) || isPaying() || indicator().status() == "Making Payment...") {
    return;
  }
  Flow& flow = current();
  const bool isFixed = !screen.outletNamed("amountView")->hidden();
  flow.wanted = true;
  flow.accepted = flow.polling = false;
  flow.shownCard = screen.outletNamed("cardHintView")->shownText();
  flow.shownAmount = screen.outletNamed(isFixed ? "amountView" : "inputAmountField")->shownText();
  if (isFixed && flow.shownAmount.size() > 2) {
    flow.shownAmount.erase(0, 2);  // the currency
  }
  std::replace(flow.shownAmount.begin(), flow.shownAmount.end(), ',', '.');
  flow.same.reset();
  if (!stray && flow.shownCard != "Add Card" && queues_->failures == 0) {
    afterwards([this, before = describe(), sentBefore = server_->sent()] {
      if (live() && animations_.empty() && describe() == before && server_->sent() == sentBefore) {
        breakRule("(d) PAY does nothing");
      }
    });
  }
}

void Walk::press(const std::shared_ptr<AlertController>& alert, const std::string& title) {
  const std::string cause = causes_.emplace(alert, cause_).first->second;
  const bool retries = title == "Retry";
  if (live() && alert->title() == "Connection problem") {
    Flow& flow = current();
    const bool isPurchase = cause == "purchase" || cause == "authenticate";
    flow.wanted = retries && (isPurchase || flow.wanted);
    flow.resent = flow.polling = false;  // no alert is shown while a round of polling goes on
    if (retries && isPurchase && !flow.lastPurchase.empty()) {
      flow.same = flow.lastPurchase;
    }
    flow.startsAllowed += retries ? 1 : 0;
    flow.pollsSince = host_->clock().steadyNow();
    flow.accepted = flow.accepted && retries;
    flow.lookupRetried = flow.lookupRetried || (retries && cause == "lookup");
    flow.silent = flow.silent || (!retries && (cause == "lookup" || cause == "list"));
    if (retries && queues_->failures == 0 && armed_.empty()) {
      afterwards([this, sentBefore = server_->sent()] {
        if (live() && server_->sent() == sentBefore && !goesOn() && alerts().empty()) {
          breakRule("(d) Retry does nothing");
        }
      });
    }
  }
  afterwards([this, alert] {
    if (animations_.empty() && isShown(alert.get())) {
      breakRule("(d) an alert stays after its button was pressed: " + alert->title());
    }
  });
  const auto& actions = alert->actions();
  for (std::size_t i = 0; i < actions.size(); ++i) {
    if (actions[i].title == title) {
      runLogged([&] { alert->press(i); });
      return;
    }
  }
}

void Walk::offerPage() {
  const std::shared_ptr<FakeWebView> view = page();
  if (!view || view->loads() == 0 || !view->hasDelegate()) {
    return;
  }
  const bool isIssuers = has(view->html(), "PAGE-");
  offer(isIssuers ? kNow : kUsual, "page: loads",
        [view] { view->finishNavigation("<p>A page</p>"); });
  if (isIssuers) {
    offer(kUsual, "page: returns", [this] { returnPage(); });
  }
  const auto fails = [this, view](const Task& failure) {
    return [this, view, failure] {
      cause_ = "page";
      failure();
    };
  };
  offer(kRare, "page: fails", fails([view] { view->failNavigation("no route"); }));
  offer(kRare, "page: dies", fails([view] { view->killProcess(); }));
  offer(kRare, "page: becomes slow", [this, view] {
    view->holdScripts();
    host_->later(3s, [view] { view->releaseScripts(); });
  });
}

/// The issuer's page comes to the termination page.
void Walk::returnPage() {
  const std::string html = page()->html();
  const std::size_t start = html.find("PAGE-") + 5;
  const std::string number = html.substr(start, html.find('-', start) - start);
  if (live() && current().returnedPages.insert(number).second) {
    current().wanted = true;
    current().same.reset();
  }
  page()->finishNavigation(fmt::format(R"(<script>Vello.handle("PARES-{}")</script>)", number));
}

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

void Walk::callEntry(const std::string& name, const Flow& flow) {
  if (!has(name, " again")) {
    facade_ = OXOrlix::make();
  }
  const std::shared_ptr<OXOrlix> facade = facade_;
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
  runHook("outcome");
}

void Walk::didPresent(const Controller& controller) {
  mustExpire_.emplace_back(controller);
  if (hasFlow() && controller->identifier() == "Product") {
    current().sawProduct = true;
  }
  runHook("present");
}

void Walk::didDismiss(const Controller&) { runHook("dismiss"); }

void Walk::progressChanged(const ProgressIndicator&) { runHook("progress"); }

bool Walk::animate(const Controller& controller, Transition, const Task& done) {
  runHook("animate");
  if (animationsToHold_ == 0) {
    return false;
  }
  --animationsToHold_;
  animations_.push_back({controller, done});
  return true;
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
