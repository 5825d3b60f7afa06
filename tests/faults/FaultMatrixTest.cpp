// SPDX-License-Identifier: Apache-2.0

#include <atomic>
#include <cstdlib>
#include <httplib.h>
#include <map>

#include <boost/json.hpp>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include "orlixkit/checkout/OXUtil.h"
#include "sandbox/Sandbox.h"
#include "tests/faults/TlsPhone.h"

namespace orlix::test {

/// A way through the library that ends well, and the requests that it is spoilt at.
struct Journey {
  std::string name;
  std::string card;  ///< paid with; empty: through wallet management
  std::vector<std::string> requests;
  bool enrolled = true;
};
void PrintTo(const Journey& journey, std::ostream* out) { *out << journey.name; }

namespace {

using namespace std::chrono_literals;

const std::vector<Journey> kJourneys{
    {"PIN", "1111", {"session/new", "lookup/query/v2", "purchase", "receipt/poll"}},
    {"no PIN", "2222", {"purchase"}},
    {"issuer", "0301", {"card/scUrl", "purchase"}},
    {"date of birth", "0201", {"card/validate"}},
    {"proof by issuer", "0203", {"card/get3dsValidateUrl", "auth3Ds", "card/validate"}},
    {"enrolment", "1111", {"sms/send", "sms/activateSession"}, false},
    {"new terms", "1111", {"profile/updateTC"}},
    {"new card", "", {"card/list", "card/bin", "card/link"}},
    {"old card", "", {"card/delink"}},
};

struct FaultKind {
  std::string name;
  boost::json::object fault;  ///< none: nothing is wrong with the answer
  bool waits = false;         ///< the answer does not come while the user would wait for it
  bool connects = false;      ///< meets the connection, so that no request arrives
};

const std::vector<FaultKind> kFaults{
    {"refused connection", {{"kind", "reset-connection"}}, false, true},
    {"refused handshake", {{"kind", "refuse-handshake"}}, false, true},
    {"closed before header", {{"kind", "hang-up"}}},
    {"closed in mid-body", {{"kind", "cut-in-body"}}},
    {"header, then silence", {{"kind", "header-then-silence"}}, true},
    {"one byte a second", {{"kind", "trickle"}, {"milliseconds", 1000}}, true},
    {"403 once", {{"kind", "status"}, {"status", 403}}},
    {"403 until let go", {{"kind", "status"}, {"status", 403}, {"count", -1}}},
    {"500", {{"kind", "status"}, {"status", 500}}},
    {"redirect loop", {{"kind", "redirect"}, {"status", 307}, {"count", -1}}},
    {"not JSON", {{"kind", "not-json"}}},
    {"empty body", {{"kind", "empty-body"}}},
    {"wrong JSON types", {{"kind", "wrong-types"}}},
    {"50 MB body", {{"kind", "huge-body"}}},
    {"clock jump", {}},
};

/// What came of a journey.
struct Outcome {
  std::string shown;        ///< what the user saw on the way
  Heard heard;              ///< by the host application
  std::int64_t sent = 0;    ///< purchases that arrived before the user saw an answer
  bool kept = false;        ///< the device's token is on disk
  bool keptBefore = false;  ///< and was when the user saw it
  std::vector<std::string> requests;
  std::int64_t sentInAll = 0;
};

/// A customer who does on each screen what leads on, and retries when he is asked.
class Customer {
 public:
  Customer(const Journey& journey, const FaultKind* kind, const std::string& request)
      : journey_(journey), kind_(kind), path_("/vello/" + request) {
    server_.start();
    if (journey.name == "new terms") {
      server_.control("POST", "/control/start", R"({"answer":"terms"})");
    }
  }

  /// `before`: connections that are made before the one that the fault meets.
  Outcome walk(std::int64_t before) {
    if (kind_ != nullptr && !kind_->fault.empty()) {
      addFault(before);
    }
    exchangePhone(std::make_unique<TlsPhone>(ServerAddress{server_.base(), server_.anchorPath()}));
    phone_->pages->onLoad = [this](FakeWebView& page) { passIssuer(page); };
    journey_.card.empty() ? phone_->wallet() : phone_->checkout("FIXED-25");
    while (phone_->app->heard.empty()) {
      phone_->runUntil([this] { return !phone_->app->heard.empty() || rests(); });
      if (phone_->app->heard.empty()) {
        goOn();
      }
    }
    tell("");
    outcome_.heard = phone_->app->heard;
    outcome_.kept = keptToken();
    outcome_.sentInAll = counted("purchasesReceived");
    const auto requests = boost::json::parse(server_.control("GET", "/control/requests"));
    for (const auto& seen : requests.at("requests").as_array()) {
      outcome_.requests.emplace_back(seen.at("path").as_string());
    }
    exchangePhone(nullptr);
    return outcome_;
  }

 private:
  /// The server's threads may ask for it at any time; it ends without holding them up.
  void exchangePhone(std::unique_ptr<TlsPhone> phone) {
    const std::lock_guard held(lock_);
    phone_.swap(phone);
    former_ = std::move(phone);
  }
  void addFault(std::int64_t before) {
    boost::json::object fault = kind_->fault;
    if (kind_->connects) {
      // Every request over a connection of its own, so that the one in question meets the fault.
      server_.control("POST", "/control/faults", R"({"kind":"last-answer","count":-1})");
      fault["skip"] = before;
    } else {
      fault["path"] = path_;
    }
    if (fault["kind"] == "redirect") {
      fault["location"] = server_.base().substr(0, server_.base().rfind('/')) + path_;
    }
    server_.control("POST", "/control/faults", boost::json::serialize(fault));
  }

  void heardOfServer(std::string_view line) {
    const auto event = boost::json::parse({line.data(), line.size()}).as_object();
    if (event.at("event") == "sms") {
      const std::lock_guard held(lock_);
      sms_ = event.at("code").as_string();
    } else if (event.contains("path") && event.at("path").as_string() == path_) {
      const std::lock_guard held(lock_);
      ++asked_;
      if (phone_ && is("clock jump")) {
        phone_->clock->setCalendar(asked_ % 2 == 0 ? -24h * 3650 : 24h * 3650);
      }
      if (is("403 until let go") && asked_ > 3) {
        server_.control("DELETE", "/control/faults");
      }
      if (phone_) {
        phone_->look();
      }
    }
  }

  std::int64_t counted(const char* name) {
    return boost::json::parse(server_.control("GET", "/control/state"))
        .at(name)
        .to_number<std::int64_t>();
  }
  bool keptToken() const {
    return Host::current().ports().userDefaults->dataForKey("test.data").has_value();
  }
  void tell(const std::string& what) {
    server_.control("DELETE", "/control/faults");
    if (std::exchange(told_, true)) {
      return;
    }
    outcome_.shown = what;
    outcome_.sent = counted("purchasesReceived");
    outcome_.keptBefore = keptToken();
  }

  bool is(const char* kind) const { return kind_ != nullptr && kind_->name == kind; }
  /// Whether the answer that does not come is what the library waits for.
  bool isKeptWaiting() const {
    return kind_ != nullptr && kind_->waits && !leapt_ && arrived_ && now_.exchanges;
  }
  /// The server holds the lookup's answer back until the user has accepted.
  bool isAskedForTerms() {
    if (phone_->screen() != "TermsAndConditionChange" || counted("walletsBehindTerms") == 0) {
      return false;
    }
    // The connections come in this order: for the session, for the lookup, for the consent. A fault
    // takes the one it is meant for before the handshake, so by then the lookup's has escaped it;
    // an accepted connection may still be overtaken by the next.
    const bool lookedUp = kind_ == nullptr || !kind_->connects || counted("handshakes") >= 2;
    if (!lookedUp) {
      phone_->look();  // until it has come, which causes no notification
    }
    return lookedUp;
  }
  /// Nothing goes on in the library but what waits for time to pass, or for the user.
  bool rests() {
    arrived_ = asked_ > 0;  // first: what it waits for then is this request's answer
    now_ = phone_->activity->state();
    return now_.atRest && (!now_.exchanges || isKeptWaiting() || isAskedForTerms());
  }

  void goOn() {
    const auto top = phone_->user->topController();
    if (isKeptWaiting()) {
      leapt_ = true;
      phone_->clock->letPass(61s);
    } else if (const auto alert = phone_->user->topAlert()) {
      answer(*alert);
    } else if (now_.hasTasks && !now_.exchanges) {
      phone_->clock->letPass(2s);  // a pause of the library's
    } else if (top != handled_) {
      handled_ = top;
      act(*phone_->user, top->identifier());
    } else {
      tell("nothing");  // the library leaves the user where he is
      if (phone_->screen() == "TermsAndConditionChange") {
        handled_.reset();  // pressed once more
      } else {
        phone_->user->tap("cancelAction");
      }
    }
  }
  void answer(const AlertController& alert) {
    if (alert.title() == "Delete Card") {
      phone_->user->pressAlert("Delete");
    } else if (alert.title() == "Connection problem") {
      tell("retry");
      phone_->user->pressAlert("Retry");
    } else {
      tell(alert.title() + ": " + alert.message());
      phone_->user->pressAlert(alert.actions().front().title);
    }
  }

  void act(TestUser& user, const std::string& screen) {
    if (screen == "Activation") {
      user.replaceAll("msisdnField", "0820000010");
    } else if (screen == "ActivationCode") {
      const std::lock_guard held(lock_);
      user.replaceAll("codeField", sms_);
    } else if (screen == "CardValidation") {
      user.replaceAll("dateOfBirthField", "31/12/1990");
    } else if (screen == "AddCard") {
      user.replaceAll("cardNumberField", "4100001000000101");
      user.replaceAll("cardHolderField", "A Customer");
    } else if (screen == "Product") {
      return pay(user);
    } else if (screen == "WalletManagement") {
      return user.tap(walletSeen_++ == 0 ? "cardAction" : "DoneClicked");
    } else if (screen == "Cards") {
      return journey_.name == "new card" ? user.tap("addCardAction")
                                         : user.tapRowButton("tableView", 0);
    } else if (screen != "TermsAndConditionChange") {
      return;
    }
    user.tap("proceedAction");
  }
  void pay(TestUser& user) {
    for (const CardOption& card : OXSession::currentSession()->cards) {
      if (card.cardHint == journey_.card && OXUtil::getLastUsedCard()->cardId != card.cardId) {
        OXUtil::setLastUsedCardId(card.cardId);
        return OXSession::currentSession()->showPurchaseScreen();
      }
    }
    if (!user.outlet("pinField")->isOutOfSight()) {
      user.replaceAll("pinField", "1234");
    }
    user.tap("proceedAction");
  }

  /// Plays the web: sends the right code to the issuer and comes back with what it says.
  void passIssuer(FakeWebView& page) {
    const auto field = [](const std::string& text, const std::string& name) {
      const std::string begin = "name='" + name + "' value='";
      const std::size_t at = text.find(begin) + begin.size();
      return text.substr(at, text.find('\'', at) - at);
    };
    httplib::SSLClient web("127.0.0.1", server_.port());
    web.enable_server_certificate_verification(false);
    const auto back =
        web.Post("/issuer/otp", httplib::Params{{"PaReq", field(page.html(), "PaReq")},
                                                {"TermUrl", field(page.html(), "TermUrl")},
                                                {"otp", "123456"}});
    page.finishNavigation("<script>Vello.handle(\"" + field(back->body, "PaRes") + "\")</script>");
  }

  const Journey& journey_;
  const FaultKind* kind_;
  const std::string path_;
  std::mutex lock_;
  std::string sms_;
  std::atomic<int> asked_ = 0;
  sandbox::Sandbox server_{{.enrolled = journey_.enrolled,
                            .onEvent = [this](std::string_view line) { heardOfServer(line); }}};
  std::unique_ptr<TlsPhone> phone_;  // changed under lock_
  std::unique_ptr<TlsPhone> former_;
  std::shared_ptr<ViewController> handled_;
  int walletSeen_ = 0;
  bool leapt_ = false;
  bool arrived_ = false;
  Activity::State now_;
  bool told_ = false;
  Outcome outcome_;
};

std::string pathOf(const std::string& request) {
  return request + (request.rfind("sms/", 0) == 0 || request == "profile/updateTC" ? "" : "/TALU");
}

bool isPurchase(const std::string& request) {
  return request == "purchase" || request == "auth3Ds";
}

struct Expected {
  std::string shown, heard;
};

/// What the kind of fault leads to, and the exceptions.
Expected expected(const Journey& journey, const std::string& request, const std::string& fault,
                  const std::string& usual) {
  const bool unnoticed = fault == "clock jump";
  const bool forgotten = fault.rfind("403", 0) == 0;
  const bool carriedOut = !forgotten && !unnoticed && fault != "500" && fault != "redirect loop" &&
                          fault.rfind("refused", 0) != 0;
  if (request == "session/new" && forgotten) {
    return {"retry", usual};  // there is no session to open again
  }
  if (request.rfind("sms/", 0) == 0) {
    // Asked twice before the user is; a new session cannot help a device that is not enrolled.
    if (request == "sms/send" && fault == "wrong JSON types") {
      return {"Warning: Could not send msisdn.", "cancelled"};
    }
    if (request == "sms/activateSession" && carriedOut) {
      return {"Warning: Could not activate.", "cancelled"};  // the code is spent
    }
    return {fault == "redirect loop" || fault == "403 until let go" ? "retry" : "", usual};
  }
  if (isPurchase(request) && fault == "wrong JSON types") {
    return {"", "error 2"};  // an answer without a status that is known
  }
  if (isPurchase(request) && journey.card[0] == '0' && carriedOut) {
    return {"retry", "error 2"};  // the authentication went into the first one
  }
  if (request == "purchase" && journey.name == "PIN" && fault == "403 until let go") {
    return {"", "error 2"};  // the second renewal leaves the PIN block under the former key
  }
  if (request == "profile/updateTC" && !unnoticed) {
    return {carriedOut ? "" : "nothing", usual};  // asked on the main thread, the answer unread
  }
  if (request == "receipt/poll" && fault == "wrong JSON types") {
    return {"", "failed"};
  }
  if (request == "receipt/poll" &&
      (fault == "closed in mid-body" || fault == "empty body" || fault == "50 MB body")) {
    return {"", usual};  // not ready yet: asked again
  }
  if (request == "card/validate" && journey.name == "proof by issuer" && !unnoticed && !forgotten) {
    return {"nothing", "cancelled"};  // a card that the server could not mark does not pay
  }
  return {unnoticed || forgotten ? "" : "retry", usual};
}

/// How often the purchase has been sent when the user is asked, or the flow ends.
testing::Matcher<std::int64_t> expectedSent(const FaultKind& kind, const Outcome& well) {
  if (kind.fault.empty()) {
    return testing::Eq(well.sentInAll);
  }
  if (kind.name.rfind("403", 0) == 0) {
    return testing::Gt(1);  // as often as the server forgets the session
  }
  if (kind.name == "redirect loop") {
    return testing::Eq(21);  // the server passes it on, and 20 times are the limit
  }
  return testing::Eq(kind.connects ? 0 : 1);
}

std::string firstWord(const Heard& heard) {
  return heard.size() == 1 ? heard[0].substr(0, heard[0].find(" 70"))
                           : testing::PrintToString(heard);
}

/// One field of the printed table; `scripts/fault-matrix` explains it.
std::string mark(const Outcome& outcome, const std::string& usual) {
  const std::string end = firstWord(outcome.heard);
  return (outcome.shown.empty() ? "." : outcome.shown.substr(0, 1)) +
         (end == usual ? "" : "/" + end.substr(0, 1)) + std::to_string(outcome.sent);
}

}  // namespace

class FaultMatrix : public testing::TestWithParam<Journey> {};

TEST_P(FaultMatrix, EachFaultAtEachRequestEndsInOneAnswerToUserAndHost) {
  const Journey& journey = GetParam();
  const Outcome well = Customer(journey, nullptr, "").walk(0);
  const std::string usual = firstWord(well.heard);
  for (const std::string& request : journey.requests) {
    const std::string path = pathOf(request);
    // Behind the session's and the lookup's, which the consent may overtake where nothing fails.
    const auto before =
        request == "profile/updateTC"
            ? 2
            : std::find(well.requests.begin(), well.requests.end(), "/vello/" + path) -
                  well.requests.begin();
    std::string line = fmt::format("| {:16} | {:23} |", journey.name, request);
    for (const FaultKind& kind : kFaults) {
      SCOPED_TRACE(request + ": " + kind.name);
      if (request == "profile/updateTC" && kind.waits) {
        line += "       |";  // it holds the main thread, which steps the clock
        continue;
      }
      const Outcome outcome = Customer(journey, &kind, path).walk(before);
      const Expected wanted = expected(journey, request, kind.name, usual);
      EXPECT_EQ(outcome.shown, wanted.shown);
      EXPECT_EQ(firstWord(outcome.heard), wanted.heard);
      if (isPurchase(request)) {
        EXPECT_THAT(outcome.sent, expectedSent(kind, well));
      } else {
        EXPECT_EQ(outcome.sentInAll, wanted.heard != "cancelled" ? well.sentInAll
                                     : journey.enrolled          ? 1
                                                                 : 0);
      }
      EXPECT_EQ(outcome.kept, well.kept && wanted.heard != "cancelled");
      EXPECT_FALSE(outcome.keptBefore && wanted.shown == "retry") << "enrolled before the code";
      line += fmt::format(" {:5} |", mark(outcome, usual));
    }
    if (std::getenv("ORLIX_FAULT_TABLE") != nullptr) {
      fmt::print("{}\n", line);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Journeys, FaultMatrix, testing::ValuesIn(kJourneys), [](const auto& of) {
  std::string name = of.param.name;
  std::erase(name, ' ');
  return name;
});

}  // namespace orlix::test
