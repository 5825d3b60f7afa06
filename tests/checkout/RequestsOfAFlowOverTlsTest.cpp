// SPDX-License-Identifier: Apache-2.0

// A request belongs to its flow, its customer and its session: over TLS, with answers that the
// wallet server holds back until the test releases them, and time that a test lets pass.
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

#include <boost/json.hpp>
#include <gmock/gmock.h>

#include "sandbox/Sandbox.h"
#include "tests/faults/TlsPhone.h"

namespace orlix::test {

namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;
using testing::StartsWith;

const std::string kSession = "/vello/session/new/TALU";
const std::string kLookup = "/vello/lookup/query/v2/TALU";
const std::string kPurchase = "/vello/purchase/TALU";
const std::string kDelete = "/vello/card/delink/TALU";
const std::string kLink = "/vello/card/link/TALU";
const std::string kReceipt = "/vello/receipt/poll/TALU";
const std::string kActivation = "/vello/sms/activateSession";

/// More requests of one kind than any flow here sends, unless it sends them without end.
constexpr std::int64_t kStorm = 150;

/// The phone with its user, and the wallet server.
class Scene {
 public:
  explicit Scene(bool enrolled = true)
      : server_({.enrolled = enrolled, .onEvent = [this](std::string_view line) { heard(line); }}) {
    server_.start();
    restart();
  }
  ~Scene() { exchangePhone(nullptr); }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  TlsPhone& phone() { return *phone_; }
  TestUser& user() { return *phone_->user; }
  Heard& heardByHost() { return phone_->app->heard; }

  /// The application begins again, with what it has stored.
  void restart() {
    exchangePhone(nullptr);
    exchangePhone(std::make_unique<TlsPhone>(ServerAddress{server_.base(), server_.anchorPath()},
                                             store_.path()));
  }

  /// An entry call up to the flow's first screen; a flow that is there is replaced.
  void checkout() {
    EXPECT_EQ(screenAfter([this] { phone_->checkout("FIXED-25"); }), "Product");
  }
  /// The same; returns that screen.
  std::string wallet(const std::string& customer) {
    return screenAfter([&] {
      facade_ = OXOrlix::make();
      facade_->WalletManagement("key", kTestSystem, phone_->root, phone_->app,
                                CustomerId{customer});
    });
  }
  /// A touch that brings another screen.
  std::string touch(const std::string& touched) {
    return screenAfter([&] { user().tap(touched); });
  }
  void pay() {
    user().type("pinField", "1234");
    user().tap("proceedButton");
  }
  /// In the list of cards, behind the payment screen or the wallet's; not the first card.
  void deleteACard() {
    EXPECT_EQ(touch("cardAction"), "Cards");
    user().tapRowButton("tableView", 1);
    user().pressAlert("Delete");
  }
  void linkACard() {
    EXPECT_EQ(touch("cardAction"), "Cards");
    EXPECT_EQ(touch("addCardAction"), "AddCard");
    user().replaceAll("cardNumberField", "4100001000000101");
    user().replaceAll("cardHolderField", "A Customer");
    user().tap("proceedAction");
  }
  void chooseTheFirstCard() {
    EXPECT_EQ(screenAfter([this] { user().chooseRow("tableView", 0); }), "Product");
  }

  /// The next answer of this path waits for `release`, and is a refusal if so wished.
  void hold(const std::string& path, bool refused = false) {
    fault({{"kind", "hold"}, {"path", path}});
    if (refused) {
      refuse(path, 1);
    }
  }
  void refuse(const std::string& path, int times) {
    fault({{"kind", "status"}, {"status", 403}, {"path", path}, {"count", times}});
  }
  void release(const std::string& path, const std::string& kind = "hold") {
    server_.control("DELETE", "/control/faults",
                    boost::json::serialize(boost::json::object{{"kind", kind}, {"path", path}}));
  }
  /// The next connection is open only after `releaseConnection`, and the next request needs one.
  void holdConnection() {
    server_.control("DELETE", "/control/connections");
    fault({{"kind", "hold-handshake"}});
  }
  void releaseConnection() { release("*", "hold-handshake"); }
  void fault(const boost::json::object& wish) {
    server_.control("POST", "/control/faults", boost::json::serialize(wish));
  }
  void set(const std::string& path, const std::string& wish) {
    server_.control("POST", path, wish);
  }

  /// Status of each request of this path, in the order of arrival; 0 until it is decided.
  std::vector<std::int64_t> statuses(const std::string& path) {
    std::vector<std::int64_t> found;
    const boost::json::object account = asked("/control/requests");
    for (const auto& seen : account.at("requests").as_array()) {
      if (seen.at("path").as_string() == path) {
        found.push_back(seen.at("status").to_number<std::int64_t>());
      }
    }
    return found;
  }
  /// What became of each purchase that arrived.
  std::vector<std::string> purchases() {
    std::vector<std::string> found;
    const boost::json::object account = asked("/control/purchases");
    for (const auto& seen : account.at("purchases").as_array()) {
      const std::string outcome(seen.at("outcome").as_string());
      found.push_back(outcome.empty() ? std::to_string(seen.at("status").as_int64()) : outcome);
    }
    return found;
  }
  std::int64_t sessionsOpened() {
    return asked("/control/state").at("sessionsOpened").to_number<std::int64_t>();
  }
  std::string smsCode() {
    const std::lock_guard held(lock_);
    return sms_;
  }

  /// Until so many requests of this path have been decided, whether or not their answers are held.
  void runUntilDecided(const std::string& path, std::size_t times = 1) {
    phone_->runUntil([&] {
      const auto all = statuses(path);
      return all.size() >= times && all[times - 1] != 0;
    });
  }
  void runUntilConnectionIsHeld() {
    phone_->runUntil([&] {
      phone_->look();  // connections cause no notification
      const boost::json::object account = asked("/control/faults");
      const auto& faults = account.at("faults").as_array();
      return faults.back().at("hits").to_number<int>() == 1;
    });
  }
  /// Until the library waits for this number of answers, and for time or for its user.
  void runUntilWaitingFor(int answers) {
    phone_->runUntil([&] {
      const Activity::State now = phone_->activity->state();
      return now.atRest && now.exchanges == answers;
    });
  }
  /// Until all that is left of the library's work waits for time, and then lets some pass, up to so
  /// much in all, or until `done`.
  void letPass(std::chrono::milliseconds time, const std::function<bool()>& done = {}) {
    for (;; time -= 500ms) {
      phone_->runUntil([&] {
        const Activity::State now = phone_->activity->state();
        return (now.atRest && !now.exchanges) || isStorm() || (done && done());
      });
      if (time <= 0ms || isStorm() || (done && done())) {
        return;
      }
      phone_->clock->letPass(500ms);
    }
  }
  /// Until whatever may still be under way has ended.
  void settle() { letPass(10s); }
  bool isStorm() const { return requests_ > kStorm; }

 private:
  std::string screenAfter(const std::function<void()>& step) {
    const auto former = user().topController();
    step();
    phone_->runUntil([&] {
      const std::string screen = phone_->screen();
      return user().topController() != former && user().topController()->hasAppeared() &&
             !screen.empty() && screen != "Waiting" &&
             !Host::current().application().progressIndicator().blocksInput();
    });
    return phone_->screen();
  }
  boost::json::object asked(const std::string& path) {
    return boost::json::parse(server_.control("GET", path)).as_object();
  }
  /// On the server's threads: makes the phone's run loop check its condition again.
  void heard(std::string_view line) {
    const auto event = boost::json::parse({line.data(), line.size()}).as_object();
    const std::lock_guard held(lock_);
    if (event.at("event") == "sms") {
      sms_ = event.at("code").as_string();
    }
    if (event.at("event") == "request") {
      ++requests_;
    }
    if (phone_) {
      phone_->look();
    }
  }
  /// The former one goes without the lock: it waits for its tasks.
  void exchangePhone(std::unique_ptr<TlsPhone> phone) {
    const std::lock_guard held(lock_);
    phone_.swap(phone);
  }

  std::mutex lock_;
  std::string sms_;
  std::atomic<std::int64_t> requests_ = 0;
  TemporaryFolder store_;
  std::unique_ptr<TlsPhone> phone_;  // changed under lock_
  std::shared_ptr<OXOrlix> facade_;
  sandbox::Sandbox server_;
};

}  // namespace

/// How far a purchase has come when its flow ends.
enum class Purchase {
  connecting,       ///< Its connection is not open yet.
  answered,         ///< It has been refused, and the answer is being sent.
  awaitingSession,  ///< It has been refused, and waits for the session that another request opens.
};

struct Interrupted {
  std::string name;
  Purchase purchase;
  bool paysAgain;  ///< A second checkout takes the flow's place; else the user cancels.
  std::vector<std::string> purchases;
};
void PrintTo(const Interrupted& row, std::ostream* out) { *out << row.name; }

/// Pays, up to that point. Returns what lets the purchase go on.
Task payUpTo(Scene& scene, Purchase point) {
  if (point == Purchase::connecting) {
    scene.holdConnection();
    scene.pay();
    scene.runUntilConnectionIsHeld();
    return [&scene] { scene.releaseConnection(); };
  }
  if (point == Purchase::answered) {
    scene.hold(kPurchase, true);
    scene.pay();
    scene.runUntilDecided(kPurchase);
    return [&scene] { scene.release(kPurchase); };
  }
  scene.hold(kSession);
  scene.refuse(kDelete, 1);
  scene.deleteACard();
  scene.runUntilDecided(kSession, 2);
  scene.chooseTheFirstCard();
  scene.refuse(kPurchase, 1);
  scene.pay();
  scene.runUntilDecided(kPurchase);
  scene.runUntilWaitingFor(1);
  return [&scene] { scene.release(kSession); };
}

class RequestsOfAFlow : public testing::TestWithParam<Interrupted> {};

TEST_P(RequestsOfAFlow, APurchaseIsNeverSentAfterItsFlow) {
  const Interrupted& row = GetParam();
  Scene scene;
  scene.checkout();
  const Task goOn = payUpTo(scene, row.purchase);
  row.paysAgain ? scene.checkout() : scene.user().tap("cancelAction");
  goOn();
  scene.settle();
  if (row.paysAgain) {
    scene.pay();
    scene.phone().runUntilOutcomeOrAlert();
    scene.settle();
  }
  EXPECT_THAT(scene.purchases(), testing::ElementsAreArray(row.purchases));
  EXPECT_THAT(scene.heardByHost(),
              ElementsAre(StartsWith(row.paysAgain ? "succeeded" : "cancelled")));
}

INSTANTIATE_TEST_SUITE_P(
    OverTls, RequestsOfAFlow,
    testing::Values(
        Interrupted{"ConnectingAtCancel", Purchase::connecting, false, {}},
        Interrupted{"AnsweredAtCancel", Purchase::answered, false, {"403"}},
        Interrupted{"AwaitingASessionAtCancel", Purchase::awaitingSession, false, {"403"}},
        Interrupted{"ConnectingAtASecondCheckout", Purchase::connecting, true, {"SUCCESS"}},
        Interrupted{"AnsweredAtASecondCheckout", Purchase::answered, true, {"403", "SUCCESS"}},
        Interrupted{"AwaitingASessionAtASecondCheckout",
                    Purchase::awaitingSession,
                    true,
                    {"403", "SUCCESS"}}),
    [](const auto& of) { return of.param.name; });

TEST(TwoRequestsOverTls, RefusedTogetherRenewTheSessionOnceAndBothSucceed) {
  struct Row {
    std::string name;
    std::vector<std::string> released;  ///< Whose refusals leave one after the other.
    bool oneAnswerAtATime;              ///< Else both arrive while the session is being renewed.
  };
  for (const Row& row :
       std::vector<Row>{{"the deletion first", {kDelete, kPurchase}, true},
                        {"the purchase first", {kPurchase, kDelete}, true},
                        {"the purchase while the deletion renews", {kDelete, kPurchase}, false},
                        {"the deletion while the purchase renews", {kPurchase, kDelete}, false}}) {
    SCOPED_TRACE(row.name);
    Scene scene;
    scene.set("/control/sessions", R"({"onePerDevice":true})");
    scene.checkout();
    scene.hold(kDelete, true);
    scene.deleteACard();
    scene.runUntilDecided(kDelete);
    scene.chooseTheFirstCard();
    scene.hold(kPurchase, true);
    scene.pay();
    scene.runUntilDecided(kPurchase);
    const std::int64_t before = scene.sessionsOpened();
    scene.hold(kReceipt);  // the flow must not end before the deletion has come through
    if (!row.oneAnswerAtATime) {
      scene.hold(kSession);
    }
    for (const std::string& path : row.released) {
      scene.release(path);
      row.oneAnswerAtATime ? scene.runUntilDecided(path, 2) : scene.runUntilDecided(kSession, 2);
    }
    if (!row.oneAnswerAtATime) {
      scene.runUntilWaitingFor(1);
      scene.release(kSession);
    }
    for (const std::string& path : row.released) {
      scene.runUntilDecided(path, 2);
    }
    scene.runUntilDecided(kReceipt);
    scene.release(kReceipt);
    scene.phone().runUntilOutcomeOrAlert();
    scene.settle();
    EXPECT_EQ(scene.sessionsOpened() - before, 1);
    EXPECT_THAT(scene.statuses(kDelete), ElementsAre(403, 200));
    EXPECT_THAT(scene.purchases(), ElementsAre("403", "SUCCESS")) << "the PIN was right";
    EXPECT_THAT(scene.heardByHost(), ElementsAre(StartsWith("succeeded")));
  }
}

TEST(RefusedForEverOverTls, ALookupIsAskedEveryTwoSecondsInTheEndAndNoMoreAfterItsFlow) {
  Scene scene;
  scene.refuse(kLookup, -1);
  const auto begun = scene.phone().clock->steadyNow();
  scene.phone().checkout("FIXED-25");
  scene.letPass(20s);
  // Four at once and three after pauses that grow; a slow machine adds to the time.
  const std::size_t pauses = (scene.phone().clock->steadyNow() - begun) / 2s;
  EXPECT_THAT(scene.statuses(kLookup).size(), AllOf(Ge(10U), Le(7U + pauses)));
  EXPECT_LE(scene.sessionsOpened(), 8 + static_cast<std::int64_t>(pauses));
  EXPECT_EQ(scene.wallet("another"), "WalletManagement");
  const std::size_t askedBefore = scene.statuses(kLookup).size();
  scene.letPass(10s);
  EXPECT_EQ(scene.statuses(kLookup).size(), askedBefore);
  EXPECT_FALSE(scene.isStorm());
}

TEST(RefusedForEverOverTls, AReceiptIsPolledForSixtySecondsAndThenTheUserIsAsked) {
  Scene scene;
  scene.checkout();
  scene.refuse(kReceipt, -1);
  scene.pay();
  scene.runUntilDecided(kReceipt);
  const auto begun = scene.phone().clock->steadyNow();
  scene.letPass(62s, [&] { return !scene.phone().alert().empty(); });
  EXPECT_EQ(scene.phone().alert(), "Connection problem");
  EXPECT_GE(scene.phone().clock->steadyNow() - begun, 59s);
  EXPECT_THAT(scene.heardByHost(), ElementsAre());
  const std::size_t polls = scene.statuses(kReceipt).size();
  scene.letPass(10s);
  EXPECT_EQ(scene.statuses(kReceipt).size(), polls) << "not before the user says so";
  EXPECT_THAT(scene.purchases(), ElementsAre("SUCCESS"));
}

TEST(CustomersOverTls, ARefusedChangeOfTheWalletIsNotSentAgainForTheCustomerAfterIt) {
  struct Row {
    const std::string& path;
    void (Scene::*send)();
  };
  for (const Row& row :
       std::vector<Row>{{kLink, &Scene::linkACard}, {kDelete, &Scene::deleteACard}}) {
    SCOPED_TRACE(row.path);
    Scene scene;
    scene.wallet("first");
    scene.hold(row.path, true);
    (scene.*row.send)();
    scene.runUntilDecided(row.path);
    EXPECT_EQ(scene.wallet("second"), "WalletManagement");
    scene.release(row.path);
    scene.settle();
    EXPECT_THAT(scene.statuses(row.path), ElementsAre(403));
    EXPECT_EQ(scene.phone().screen(), "WalletManagement");
  }
}

TEST(CustomersOverTls, ALateActivationIsNotStoredForTheCustomerAfterIt) {
  Scene scene(false);
  EXPECT_EQ(scene.wallet("first"), "Activation");
  scene.user().replaceAll("msisdnField", "0820000010");
  EXPECT_EQ(scene.touch("proceedAction"), "ActivationCode");
  scene.hold(kActivation);
  scene.user().replaceAll("codeField", scene.smsCode());
  scene.user().tap("proceedAction");
  scene.runUntilDecided(kActivation);
  EXPECT_EQ(scene.wallet("second"), "Activation");
  scene.release(kActivation);
  scene.settle();
  EXPECT_EQ(scene.phone().screen(), "Activation") << "the second customer's";
  scene.restart();
  EXPECT_EQ(scene.wallet("second"), "Activation") << "no token has been stored for him";
}

}  // namespace orlix::test
