// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include <fmt/format.h>

#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/security/Base64.h"
#include "orlixkit/security/PinBlock.h"
#include "orlixkit/ui/AlertController.h"
#include "tests/phone/Walk.h"

// The rules that hold in every order of events.
//
// A flow may end without a callback, and its user have no way out, in these cases only, which hosts
// and servers rely on; `Flow::silent` marks them:
// - Cancel in the connection alert of a failed lookup or card list: the waiting screen stays.
// - A lookup that finds nothing, when no waiting screen was handed over (after Retry, after a
//   change of the cards).
// - The server refuses this version of the library.
// - The host has taken screens, alerts or the window away itself.

namespace orlix::test {

namespace {

/// Requests of one kind that may be sent without time passing: a dozen that wait, and four attempts
/// of each. More of them are a storm.
constexpr int kMostAtOnce = 60;
/// A round of polling ends after 60 seconds; a pause of 2 seconds may end later.
constexpr std::chrono::seconds kLongestPolling(62);

bool findsFirstScreen(const std::string& kind) {
  return kind == "session" || kind == "lookup" || kind == "list";
}

std::string withoutPin(boost::json::object body) {
  body.erase("pinData");
  return boost::json::serialize(body);
}

}  // namespace

std::string Walk::rules;
std::vector<std::string> Walk::ignored;
std::vector<std::string> Walk::excluded;

void Walk::breakRule(const std::string& rule) {
  const bool counts =
      (rules.empty() || rules.find(rule[1]) != std::string::npos) &&
      std::none_of(ignored.begin(), ignored.end(), [&rule](const std::string& text) {
        return rule.find(text) != std::string::npos;
      });
  if (broken_.empty() && counts) {
    broken_ = rule;
  }
}

// Requests.

std::optional<std::string> Walk::requestSent(HeldRequest& request) {
  const ServerSession* const session = server_->session(request.session);
  std::string key = session == nullptr ? "" : session->libKey;
  if (request.kind == "session") {
    key = request.body.at("platform").as_object().at("libKey").as_string().c_str();
  } else if (session == nullptr) {
    breakRule("(b) a request is sent without a session: " + request.kind);
  }
  request.flow = key.empty() ? -1 : std::stoi(key.substr(4));
  request.asker = asker(request.kind);
  request.late = answersLeftScreen_ && (request.kind == "lookup" || request.kind == "list");
  if (!preemptive_ && (request.flow != current_ || !live())) {
    breakRule("(e) a request is sent after the outcome or replacement of its flow: " +
              request.kind);
  } else if (request.flow == current_) {
    Flow& flow = current();
    if (request.system != flow.system) {
      breakRule("(b) a request is sent to the other system: " + request.kind);
    }
    const std::string code = request.text(request.kind == "lookup" ? "qrValue" : "code");
    if (!code.empty() && code != flow.code) {
      breakRule("(b) a request carries the code of another flow: " + request.kind);
    }
    if (request.kind == "session") {
      checkSession(request, flow);
    } else if (request.kind == "purchase" || request.kind == "authenticate") {
      checkPurchase(request, flow);
    } else if (request.kind == "activate") {
      wipesAtSending_[request.number] = wipes_[request.system];
    } else if (request.kind == "receipt") {
      flow.polling = false;
      if (host_->clock().steadyNow() - flow.pollsSince > kLongestPolling) {
        breakRule("(e) a receipt is asked for after the deadline");
      }
    }
  }
  checkStorm(request);
  std::optional<std::string> atOnce;
  if (request.kind == "terms") {
    atOnce = server_->isForgotten(request) ? "403" : termsAnswer_;
  } else if (forgetful_) {
    atOnce = request.kind == "session" ? "ok" : "403";
  }
  if (atOnce) {
    if (request.flow == current_) {
      noteAnswer(request, *atOnce);
    }
    notePurchase(request, *atOnce);
  }
  return atOnce;
}

void Walk::checkStorm(const HeldRequest& request) {
  if (host_->clock().steadyNow() !=
      sentAt_) {  // else a run of several seconds counts as one moment
    sentAt_ = host_->clock().steadyNow();
    sentNow_.clear();
  }
  if (++sentNow_[request.kind] > kMostAtOnce) {
    breakRule("(e) requests follow each other without a pause: " + request.kind);
    forgetful_ = false;
  }
}

void Walk::checkSession(const HeldRequest& request, Flow& flow) {
  const std::string token = request.text("ssToken");
  const auto issued = tokens_.find(token);
  if (!token.empty() && (issued == tokens_.end() || issued->second.system != request.system ||
                         issued->second.wipes != wipes_[request.system])) {
    breakRule("(e) a session is opened with a device token that was wiped or is another system's");
  }
  if (--flow.startsAllowed < 0 && !server_->newestSession(flow.libKey).empty() && !forgetful_) {
    breakRule("(e) a session is renewed although the refused request was sent in a former one");
  }
}

void Walk::checkPurchase(const HeldRequest& request, Flow& flow) {
  const bool resent = std::exchange(flow.resent, false);
  // The request itself is held already.
  if (unanswered({"purchase", "authenticate"}) > 1) {
    breakRule("(e) a second purchase is sent while one is unanswered");
  } else if (flow.accepted && request.kind == "purchase") {
    breakRule("(e) a purchase is sent after one was accepted");
  } else if (!resent && !flow.wanted && !forgetful_) {
    breakRule("(e) a purchase is sent that the user has not asked for");
  }
  flow.wanted = false;
  if ("xxx-" + std::to_string(request.integer("cardId")) != flow.shownCard) {
    breakRule(fmt::format("(g) the card is not the one that was shown: {} instead of {}",
                          request.integer("cardId"), flow.shownCard));
  }
  if (request.kind == "purchase" && request.text("amount") != flow.shownAmount) {
    breakRule(fmt::format("(g) the amount is not the one that was shown: {} instead of {}",
                          request.text("amount"), flow.shownAmount));
  }
  flow.lastPurchase = withoutPin(request.body);
  flow.purchases[request.number] = "open";
  if (flow.same && *flow.same != flow.lastPurchase) {
    breakRule("(g) Retry sends another purchase: " + flow.lastPurchase);
  }
  if (const auto* data = request.body.if_contains("secureCodeData")) {
    const auto number = std::to_string(data->as_object().at("secureCodeId").as_int64());
    if (data->as_object().at("PaRes").as_string() != "PARES-" + number) {
      breakRule("(g) a PaRes is sent with the number of another page");
    }
  }
  const ServerSession* const session = server_->session(request.session);
  if (const auto* data = request.body.if_contains("pinData"); data != nullptr && session) {
    const auto key = Base64::decode(session->pinKey);
    const auto block = PinBlock::createPINBlock(*key, SecretString("1234"), 0);
    // The block of a purchase that is refused twice in a row is not made again.
    if (flow.refusals < 2 && data->as_object().at("pinBlock").as_string() != *block) {
      breakRule("(g) a PIN block is sent in a session whose key it was not made with");
    }
  }
}

/// At the outcome. What the facade says of the purchases, against what the server has received and
/// answered.
void Walk::checkPurchaseStatus(const Flow& flow) {
  const std::shared_ptr<OXOrlix> facade = flow.facade.lock();
  if (!facade) {
    return;  // the host has not kept it
  }
  const PurchaseStatus status = facade->purchaseStatus();
  const auto anyIs = [&flow](const std::set<std::string>& answers) {
    return std::any_of(flow.purchases.begin(), flow.purchases.end(),
                       [&](const auto& one) { return answers.contains(one.second); });
  };
  const bool arrived = !flow.purchases.empty();
  const std::string& heard = flow.app->heard.back();
  const std::string said = inWords(status) + " after " + heard;
  if (status.state == PurchaseState::none && anyIs({"open", "ok", "lost", "refused", "403"})) {
    breakRule("(i) a purchase has arrived that the facade knows nothing of: " + said);
  } else if (status.state == PurchaseState::refused && (!arrived || anyIs({"open", "lost"}))) {
    breakRule("(i) a purchase counts as refused that nothing has refused: " + said);
  } else if (status.state == PurchaseState::paid && !anyIs({"receipt: ok"})) {
    breakRule("(i) a purchase counts as paid without a receipt: " + said);
  } else if (status.state == PurchaseState::unknown && !arrived && !preemptive_) {
    breakRule("(i) no purchase has arrived, and the facade speaks of one: " + said);
  } else if (heard.starts_with("succeeded") && "succeeded" + inWords(status).substr(4) != heard) {
    breakRule("(i) a success is not what the facade says: " + said);
  }
}

// After each event.

void Walk::settle() {
  try {
    host_->runUntilIdle();
  } catch (const StuckError& stuck) {
    breakRule(std::string("(f) nothing can go on: ") + stuck.what());
  }
  if (preemptive_) {
    questions_.clear();
  }
  for (const auto& question : std::exchange(questions_, {})) {
    question();
  }
  look();
  check();
}

/// The answer that is about to be released changes neither screens nor indicator, and stores
/// nothing. The token of an activation is looked at when it is used; the cards that a lookup brings
/// may end the choice of one that is gone.
void Walk::changesNothing(const std::string& rule) {
  afterwards([this, rule, before = describe(), writes = store_->writes] {
    if (describe() != before) {
      breakRule(rule);
    } else if (store_->writes != writes && !rule.ends_with("activate") &&
               !rule.ends_with("lookup") && !rule.ends_with("list")) {
      breakRule(rule + ", in the store");
    }
  });
}

void Walk::look() {
  if (hasFlow() && !current().ended && !live()) {
    current().ended = true;
    current().polling = false;
  }
  for (const Controller& root : roots()) {
    for (const Controller& one : chain(root)) {
      if (!one->identifier().empty()) {
        lastScreens_[one->identifier()] = one;
        if (one->identifier() == "Product" && hasFlow()) {
          current().sawProduct = true;
        }
      }
    }
  }
  for (const auto& alert : alerts()) {
    if (causes_.emplace(alert, cause_).second) {
      checkPlaceOf(alert);
    }
  }
  mustExpire_.emplace_back(OXSession::currentSession());
  mustExpire_.emplace_back(OMVello::sharedOMVello().connection());
  mustExpire_.emplace_back(facade_);
}

void Walk::check() {
  checkHosts();
  if (!preemptive_) {
    checkScreens();
    checkIndicator();
    checkAlerts();
    checkWayOut();
  }
  if (!log_->refused.empty() && log_->refused.find("has gone") == std::string::npos) {
    breakRule("(h) a presentation is refused: " + log_->refused);
  }
  log_->refused.clear();
  log_->uncaught.clear();
}

void Walk::checkHosts() {
  for (const Flow& flow : flows_) {
    if (flow.app->heard.size() > 1) {
      breakRule("(a) a host is called back twice");
    }
    const bool isOver = flow.ended && !flow.replaced && animations_.empty();
    if (isOver && flow.app->heard.empty()) {
      breakRule("(a) the outcome of a flow does not reach its host");
    }
  }
}

/// What the entry call has brought along shows, on a card over the host's screen.
void Walk::checkContent(const ViewController& shown) {
  const Size whole = host_->application().mainScreenSize();
  const Controller container = shown.parent.lock();
  const Rect frame = (container ? *container : shown).view()->frame();
  if (frame != Rect{(whole.width - 300) / 2, (whole.height - 400) / 2, 300, 400}) {
    breakRule("(c) a screen is no card in the middle: " + shown.identifier());
  }
  const auto text = [&shown](const char* outlet) { return shown.outletNamed(outlet)->shownText(); };
  if (shown.identifier() == "Activation" &&
      text("msisdnField") != "+27" + current().msisdn.substr(1)) {
    breakRule("(b) another flow's number is suggested: " + text("msisdnField"));
  }
  if (shown.identifier() != "Product") {
    return;
  }
  const std::string shop = text("merchantView");
  if (!shop.empty() && shop != "Shop " + current().code) {
    breakRule("(b) the payment screen shows the code of another flow");
  }
  if (shown.outletNamed("testWarningLabel")->hidden() != (current().system == kLiveSystem)) {
    breakRule("(b) the payment screen's test warning is wrong");
  }
  const bool isTyped = !shown.outletNamed("inputAmountField")->isOutOfSight();
  if (isTyped && current().fixesAmount && text("inputAmountField") != "10") {
    breakRule("(b) the payment screen does not suggest the amount of the entry call");
  }
}

void Walk::checkScreens() {
  for (const auto& weak : former_) {
    if (const Controller screen = weak.lock(); screen && isShown(screen.get())) {
      breakRule("(b) a screen or alert of a replaced flow is still shown: " + screen->identifier());
    }
  }
  std::erase_if(former_, [](const auto& weak) { return weak.expired(); });
  const Controller shown = screen();
  if (shown && !live() && animations_.empty()) {
    breakRule("(c) a screen outlives its flow: " + shown->identifier());
  }
  if (shown) {
    checkContent(*shown);
    if (const std::string found = DeclarationCheck::undeclaredHiding(*shown); !found.empty()) {
      breakRule("(j) " + found);
    }
  }
  for (const Controller& root : roots()) {
    if (live() && root != current().controller && !top(root)->identifier().empty()) {
      breakRule("(b) a screen is shown on another controller: " + top(root)->identifier());
    }
  }
  const bool mayLocate = live() && current().sawProduct;
  if (host_->locationManager().updating() && !mayLocate) {
    breakRule("(c) location updates outlive their flow");
  }
  const auto session = OXSession::currentSession();
  // What a lookup brings during a payment waits for its end.
  if (live() && !current().lookupsAreMixed && !session->isPaying() && session->codeInfo &&
      std::stoul(session->codeInfo->shortDescription.value_or("0")) < current().newestLookup) {
    breakRule("(e) an older lookup takes the place of a newer one");
  }
}

void Walk::checkIndicator() {
  if (!indicator().visible() || !animations_.empty()) {
    return;
  }
  static const std::map<std::string, std::set<std::string>> kScreens{
      {"Loading...", {"AddCard"}},
      {"Making Payment...", {"Product", "SecureCode", "3DAuthSecureCode"}},
      {"Please wait...",
       {"Activation", "ActivationCode", "MsisdnRelink", "CardValidation", "Cards"}},
      {"Please wait", {"SecureCode", "3DAuthSecureCode", "TermsAndConditions"}}};
  const Controller shown = screen();
  const std::string name = shown ? shown->identifier() : "no screen";
  const auto known = kScreens.find(indicator().status());
  if (!live() || known == kScreens.end() || !known->second.contains(name)) {
    breakRule(fmt::format("(c) the indicator \"{}\" is left over {}", indicator().status(), name));
  }
  const auto asksTwice = std::count_if(
      server_->held().begin(), server_->held().end(), [&shown](const WalletServer::Request& one) {
        return one->asker.lock() == shown && !findsFirstScreen(one->kind);
      });
  if (indicator().blocksInput() && asksTwice > 1) {
    breakRule("(e) a screen whose touches are blocked sends a second request: " + name);
  }
  if (indicator().blocksInput() && name != "TermsAndConditions" && !goesOn()) {
    breakRule("(c) touches are blocked, and nothing is in progress: " + name);
  }
}

/// A new alert: a flow that has a screen shows it there.
void Walk::checkPlaceOf(const std::shared_ptr<AlertController>& alert) {
  if (preemptive_ || !live() || !screen() || alert->title() == "Deregister") {
    return;
  }
  const std::vector<Controller> flows = chain(current().controller);
  if (std::find(flows.begin(), flows.end(), alert) == flows.end()) {
    breakRule("(h) an alert is shown elsewhere than on the flow's screen");
  }
}

void Walk::checkDeclared(const Controller& appearing) {
  if (const std::string found = declarations_.complaintAbout(appearing); !found.empty()) {
    breakRule("(j) " + found);
  }
}

void Walk::checkAlerts() {
  int connectionAlerts = 0;
  for (const auto& alert : alerts()) {
    connectionAlerts += alert->title() == "Connection problem" ? 1 : 0;
    const bool mayStay = alert->title() == "Deregister" || alert->title() == "Error";
    if (!mayStay && !live() && animations_.empty()) {
      breakRule("(c) an alert outlives its flow: " + alert->title());
    }
  }
  if (connectionAlerts > 1) {
    breakRule("(h) two connection alerts at a time");
  }
}

void Walk::checkWayOut() {
  if (!live() || goesOn() || current().silent || !alerts().empty()) {
    return;
  }
  const Controller shown = screen();
  if (!shown || shown->identifier() == "Waiting") {
    breakRule("(d) nothing goes on, and no screen offers a way out");
  }
}

void Walk::end() {
  std::vector<std::size_t> heard;
  for (const Flow& flow : flows_) {
    heard.push_back(flow.app->heard.size());
  }
  const SteadyTime before = host_->clock().steadyNow();
  host_->application().setObserver(nullptr);
  host_->shutdown();
  if (host_->clock().steadyNow() != before) {
    breakRule("(a) the application's end takes time");
  }
  host_.reset();
  animations_.clear();
  goneScenes_.clear();
  goneWindow_.reset();
  offers_.clear();
  questions_.clear();
  otherRoot_.reset();
  facade_.reset();
  for (std::size_t i = 0; i < heard.size(); ++i) {
    flows_[i].controller.reset();
    if (flows_[i].app->heard.size() != heard[i]) {
      breakRule("(a) a host is called back at the application's end");
    }
    if (flows_[i].app.use_count() != 1) {
      breakRule("(a) a host is kept after the application's end");
    }
  }
  if (std::any_of(mustExpire_.begin(), mustExpire_.end(),
                  [](const auto& one) { return !one.expired(); })) {
    breakRule("(a) something is kept after the application's end");
  }
}

}  // namespace orlix::test
