// SPDX-License-Identifier: Apache-2.0

#include <functional>
#include <set>
#include <system_error>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/security/OMStorage.h"
#include "tests/phone/Phone.h"

// What a request may still do when the screen, the flow or the customer that it was made for has
// gone: nothing.

namespace orlix::test {

namespace {

const std::string kPinCards = R"(,"method":"AMT")";
const Heard kPaidOnce{"succeeded 9007199254740993"};
const Heard kCancelled{"cancelled"};

ServerReply refusedAfter(Duration span) { return ServerReply().after(span).status(403); }

std::size_t purchases(Phone& phone) { return phone.wallet.asked("/purchase"); }

/// A screen with a request of its own, and the way from there to the payment screen.
struct ScreenRequest {
  std::string name;
  std::function<void(Phone&)> showAndSend;
  std::string path;
  ServerReply answer;
  std::function<void(Phone&)> leave;
};

void leaveForPayment(Phone&) { OXSession::currentSession()->showPurchaseScreen(); }

void sendDelete(Phone& phone) {
  phone.tap("cardView");
  phone.host.user().tapRowButton("tableView", 1);
  phone.host.runUntilIdle();
  phone.press("Delete");
}

void sendBin(Phone& phone) {
  OXSession::currentSession()->showAddCardScreen();
  phone.host.runUntilIdle();
  phone.proceedWithCard();
  phone.host.runUntilIdle();
}

void sendRelink(Phone& phone) {
  OXSession::currentSession()->showMsisdnRelinkScreen();
  phone.host.runUntilIdle();
  phone.host.type("msisdnField", "0821234567");
  phone.tap("proceedButton");
}

void sendValidation(Phone& phone) {
  OXSession::currentSession()->showCardValidationScreen();
  phone.host.runUntilIdle();
  phone.tap("proceedButton");
}

std::vector<ScreenRequest> screenRequests() {
  return {
      {"delete", sendDelete, "/card/delink", late(5s, "{}"), leaveForPayment},
      {"bin", sendBin, "/card/bin", late(5s, answers::kNothingNeeded), leaveForPayment},
      {"link", sendBin, "/card/link", late(5s, answers::kLinked), leaveForPayment},
      {"link, to be confirmed", sendBin, "/card/link", late(5s, answers::kRelink), leaveForPayment},
      {"link refused", sendBin, "/card/link", late(5s, answers::kFailed), leaveForPayment},
      {"relink", sendRelink, "/card/link", late(5s, answers::kLinked), leaveForPayment},
      {"relink refused", sendRelink, "/card/link", late(5s, answers::kFailed), leaveForPayment},
      {"relink lost", sendRelink, "/card/link", ServerReply().after(5s).fail("lost"),
       leaveForPayment},
      {"validation", sendValidation, "/card/validate", late(5s, answers::kValidated),
       leaveForPayment},
      {"card removed", sendValidation, "/card/validate", late(5s, "{}"), leaveForPayment},
  };
}

}  // namespace

TEST(ScreenThatWasLeft, ChangesNothingWhateverItsRequestIsAnswered) {
  for (const ScreenRequest& row : screenRequests()) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.cards = {cardJson(5, "4242", kPinCards), cardJson(12, "0012", kPinCards)};
    phone.showPaymentScreen();
    OXUtil::setLastUsedCardId(5);
    phone.wallet.next(row.path, row.answer);
    row.showAndSend(phone);
    row.leave(phone);
    phone.host.runUntilIdle();
    EXPECT_FALSE(phone.busy()) << "an indicator of the screen that was left";

    phone.wallet.next("/purchase", late(20s, phone.wallet.purchase));
    phone.pay();
    const auto screen = phone.host.topController();
    phone.host.runFor(10s);
    EXPECT_EQ(phone.host.topController(), screen) << phone.screen() << phone.alert();
    EXPECT_EQ(phone.indicator().status(), "Making Payment...");
    phone.act("proceedAction");
    phone.host.runFor(1s);
    EXPECT_EQ(purchases(phone), 1U) << "paid twice";
    EXPECT_EQ(OXUtil::getLastUsedCardid(), 5);
    phone.runUntilOutcome();
    EXPECT_EQ(phone.app->heard, kPaidOnce);
  }
}

TEST(ScreenThatWasLeft, LeavesAFormThatIsBeingFilledInAlone) {
  Phone phone;
  phone.wallet.cards = {cardJson(5, "4242", kPinCards), cardJson(12, "0012", kPinCards)};
  phone.showPaymentScreen();
  phone.wallet.next("/lookup", late(5s, R"({"codeInfo":{"code":"C-1","amountString":"R 1"}})"));
  sendDelete(phone);
  phone.tap("addCardButton");
  phone.host.type("cardHolderField", "A N Other");
  phone.host.runFor(10s);
  EXPECT_EQ(phone.screen(), "AddCard");
  EXPECT_EQ(phone.shown("cardHolderField"), "A N Other");
  EXPECT_TRUE(OXSession::currentSession()->cards.empty()) << "the data is up to date all the same";
}

TEST(Purchase, IsNeverSentOnceItsFlowIsOver) {
  struct Case {
    std::string name;
    std::function<void(Phone&)> prepare;
    std::size_t sent;
  };
  const std::vector<Case> cases{
      {"refused with 403 afterwards",
       [](Phone& phone) { phone.wallet.next("/purchase", refusedAfter(3s)); }, 1},
      {"while another request renews the session",
       [](Phone& phone) {
         phone.wallet.next("/session/new", late(4s, phone.wallet.session));
         sendDelete(phone);
         phone.tap("cancelButton");
         phone.wallet.next("/purchase", ServerReply::of(403));
       },
       1},
  };
  for (const Case& row : cases) {
    for (const bool replaced : {false, true}) {
      SCOPED_TRACE(row.name + (replaced ? ", replaced" : ", cancelled"));
      Phone phone;
      phone.wallet.cards = {cardJson(5, "4242", kPinCards), cardJson(12, "0012", kPinCards)};
      phone.showPaymentScreen();
      phone.wallet.next("/card/delink", ServerReply::of(403));
      row.prepare(phone);
      phone.pay();
      phone.host.runFor(1s);
      ASSERT_EQ(phone.screen(), "Product") << phone.alert();
      const auto first = phone.app;
      if (replaced) {
        phone.beginAnew(Entry::checkout);
      } else {
        phone.host.tap("cancelAction");
      }
      phone.host.runFor(30s);
      EXPECT_EQ(purchases(phone), row.sent);
      EXPECT_EQ(first->heard, replaced ? Heard{} : kCancelled);
    }
  }
}

TEST(RefusedRequest, PausesFromTheFourthRefusalOnAndEndsWithItsFlow) {
  Phone phone;
  phone.host.connections().setLatency(1ms);
  phone.wallet.always("/lookup", ServerReply::of(403));
  phone.checkout();
  phone.host.runFor(60s);
  EXPECT_GT(phone.wallet.asked("/lookup"), 20U) << "no limit while the flow lives";
  EXPECT_LT(phone.wallet.asked("/lookup"), 45U);
  phone.beginAnew(Entry::preRegister);
  const std::size_t asked = phone.wallet.asked("/lookup");
  phone.host.runFor(60s);
  EXPECT_EQ(phone.wallet.asked("/lookup"), asked);
}

TEST(RefusedRequest, OfPollingEndsAtTheDeadline) {
  Phone phone;
  phone.showPaymentScreen();
  phone.wallet.always("/receipt/poll", ServerReply::of(403));
  phone.pay();
  phone.host.runFor(59s);
  EXPECT_EQ(phone.alert(), "");
  phone.host.runFor(2s);
  EXPECT_EQ(phone.alert(), kConnectionProblem);
  EXPECT_TRUE(phone.host.log().contains("Receipt polling timed out after 60 seconds."));
  const std::size_t polled = phone.wallet.asked("/receipt/poll");
  phone.host.runFor(10s);
  EXPECT_EQ(phone.wallet.asked("/receipt/poll"), polled);
}

TEST(Customer, GetsNoTokenOfAnActivationThatWasUnderWayAtTheChange) {
  struct Case {
    std::string name;
    std::function<void(Phone&)> meanwhile;
  };
  const auto otherCustomer = [](Phone& phone) {
    phone.facade = OXOrlix::make();
    phone.facade->checkoutWithCode("C-1", 0, "key", kTestSystem, phone.host.root(), phone.app,
                                   CustomerId{"second"});
  };
  for (const Case& row : std::vector<Case>{
           {"another customer", otherCustomer},
           {"deregistered", [](Phone& phone) { phone.facade->deregisterUser(); }},
           {"the flow replaced", [](Phone& phone) { phone.beginAnew(Entry::checkout); }}}) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.beginEnrolment(Entry::checkout);
    phone.wallet.next("/sms/activateSession", late(5s, answers::kSmsSent));
    phone.host.type("codeField", "1234");
    phone.host.tap("proceedButton");
    phone.host.runFor(1s);
    row.meanwhile(phone);
    phone.host.runFor(10s);
    phone.beginAnew(Entry::checkout);
    phone.host.runFor(1s);
    EXPECT_EQ(phone.wallet.sent("/session/new", "ssToken"), "");
  }
}

TEST(Customer, IsWipedAlsoWhileTheFirstSessionIsStillToBeOpened) {
  Phone first;
  first.beginEnrolment(Entry::checkout);
  first.host.type("codeField", "1234");
  first.tap("proceedButton");
  first.host.runFor(1s);
  const auto store = first.host.userDefaults();
  first.host.shutdown();
  // The next run of the application: two customers in immediate succession.
  first.~Phone();
  new (&first) Phone({.userDefaults = store});
  for (const char* customer : {"one", "two"}) {
    first.facade->checkoutWithCode("C-1", 0, "key", kTestSystem, first.host.root(), first.app,
                                   CustomerId{customer});
  }
  first.host.runFor(1s);
  EXPECT_EQ(first.wallet.sent("/session/new", "ssToken"), "");
}

TEST(Session, IsRenewedOnceForTwoRequestsThatAreRefusedTogether) {
  // One live session: a new one ends the former.
  Phone phone;
  phone.wallet.cards = {cardJson(5, "4242", kPinCards), cardJson(12, "0012", kPinCards)};
  phone.showPaymentScreen();
  int sessions = 0;
  bool forgotten = true;
  phone.host.connections().setLatency(50ms);
  phone.host.connections().on("/session/new", [&](const RecordedRequest&) {
    ++sessions;
    forgotten = false;
    return ok(R"({"sessionId":"new)" + std::to_string(sessions) +
              R"(","pinKey":"ABEiM0RVZneImaq7zN3u/w==","activated":true,"allowConnection":true})");
  });
  const auto liveSessionOnly = [&](const RecordedRequest& request) {
    const bool isLive =
        !forgotten && request.header("x-session-token1") == "new" + std::to_string(sessions);
    return isLive ? phone.wallet.answer(request) : ServerReply::of(403);
  };
  phone.host.connections().on("/card/delink", liveSessionOnly);
  phone.host.connections().on("/purchase", liveSessionOnly);
  sendDelete(phone);
  phone.tap("cancelButton");
  phone.pay();
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, kPaidOnce);
  EXPECT_EQ(sessions, 1);
  std::set<std::string> blocks;
  for (const RecordedRequest& request : phone.host.connections().requestsTo("/purchase")) {
    blocks.insert(request.body.value_or(""));
  }
  EXPECT_EQ(blocks.size(), 2U) << "the block is made anew from the new key";
}

TEST(Lookup, NeitherEndsNorReplacesAPaymentInProgressAndBringsItsDataAfterwards) {
  for (const std::string info :
       {R"({"code":"C-1","amountString":"R 30","amount":"30"})",
        R"({"code":"C-1","amountString":"R 30","amount":"30","requestTip":true})"}) {
    SCOPED_TRACE(info);
    Phone phone;
    phone.showPaymentScreen();
    phone.wallet.next("/lookup", late(3s, R"({"codeInfo":)" + info + "}"));
    OXOrlix::loadCodeInfo(nullptr);
    phone.wallet.next("/purchase", ServerReply().after(6s).fail("lost"));
    phone.pay();
    const auto screen = phone.host.topController();
    phone.host.runFor(5s);
    EXPECT_EQ(phone.host.topController(), screen);
    EXPECT_EQ(phone.shown("amountView"), "R 25.00");
    phone.host.runFor(2s);
    phone.press("Retry");
    EXPECT_EQ(phone.wallet.sent("/purchase", "amount"), "25.00") << "Retry sends the same request";
    phone.runUntilOutcome();
    EXPECT_EQ(phone.app->heard, kPaidOnce);
  }
  Phone phone;
  phone.showPaymentScreen();
  phone.wallet.next("/lookup", late(3s, R"({"codeInfo":{"code":"C-1","amountString":"R 30"}})"));
  OXOrlix::loadCodeInfo(nullptr);
  phone.wallet.next("/purchase", ServerReply().after(6s).fail("lost"));
  phone.pay();
  phone.host.runFor(7s);
  phone.press("Cancel");
  EXPECT_EQ(phone.screen(), "Product");
  EXPECT_EQ(phone.shown("amountView"), "R 30");
  EXPECT_EQ(phone.shown("cardHintView"), "Add Card");
}

TEST(Lookup, ThatWasAskedForEarlierDoesNotOverwriteALaterOne) {
  Phone phone;
  phone.showPaymentScreen();
  phone.wallet.next("/lookup", late(5s, R"({"codeInfo":{"code":"C-1","amountString":"old"}})"));
  OXOrlix::loadCodeInfo(nullptr);
  phone.host.runFor(1s);
  OXOrlix::loadCodeInfo(nullptr);
  phone.host.runFor(1s);
  phone.host.runFor(10s);
  EXPECT_EQ(phone.shown("amountView"), "R 25.00");
  EXPECT_EQ(OXSession::currentSession()->codeInfo->amountString, "R 25.00");
}

TEST(ConnectionAlert, OfAPaymentThatIsLostLeavesPayAndCardActive) {
  Phone phone;
  phone.showPaymentScreen();
  phone.wallet.next("/purchase", unreachable());
  phone.pay();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), kConnectionProblem);
  // The host removes it, as a lock screen does.
  phone.host.topController()->presentingViewController()->dismiss(false);
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.screen(), "Product");
  phone.tap("proceedButton");
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, kPaidOnce);
  EXPECT_EQ(purchases(phone), 2U);
}

TEST(ConnectionAlert, IsFollowedByTheNextAndShownOnceForEachKindOfRequest) {
  Phone phone;
  phone.wallet.cards = {cardJson(5, "4242", kPinCards), cardJson(12, "0012", kPinCards)};
  phone.showPaymentScreen();
  OXSession::currentSession()->showAddCardScreen();
  phone.host.runUntilIdle();
  phone.wallet.next("/card/bin", unreachable(), 2);
  phone.wallet.next("/lookup", unreachable());
  phone.proceedWithCard();
  phone.act("proceedAction");
  OXOrlix::loadCodeInfo(nullptr);
  phone.host.runUntilIdle();
  int alerts = 0;
  while (phone.alert() == kConnectionProblem && alerts < 9) {
    ++alerts;
    phone.press("Cancel");
  }
  EXPECT_EQ(alerts, 2) << "one for the card number, one for the code";
}

TEST(EntryCall, ThrowsWhenThereIsNoThreadAndAScreenOffersARetry) {
  bool noThread = true;
  Phone phone({.adapt = [&](Ports& ports) {
    struct Queues : BackgroundQueues {
      std::shared_ptr<BackgroundQueues> inner;
      bool* fails;
      void global(QualityOfService service, Task task) override {
        check();
        inner->global(service, std::move(task));
      }
      std::shared_ptr<OperationQueue> newOperationQueue() override {
        check();
        return inner->newOperationQueue();
      }
      void close() override { inner->close(); }
      void check() const {
        if (*fails) {
          throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        }
      }
    };
    auto queues = std::make_shared<Queues>();
    queues->inner = ports.backgroundQueues;
    queues->fails = &noThread;
    ports.backgroundQueues = queues;
  }});
  EXPECT_THROW(phone.checkout(), std::system_error);
  phone.host.runFor(1s);
  EXPECT_EQ(phone.host.topController(), phone.host.root());
  EXPECT_TRUE(phone.app->heard.empty());
  noThread = false;
  phone.facade = OXOrlix::make();
  phone.showPaymentScreen();
  noThread = true;
  phone.pay();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), kConnectionProblem);
  EXPECT_EQ(purchases(phone), 0U);
  noThread = false;
  phone.press("Retry");
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, kPaidOnce);
}

TEST(EntryCall, RefusesTextsThatNoRequestCanCarry) {
  Phone phone;
  phone.showPaymentScreen();
  for (const auto& [code, key] :
       std::vector<std::pair<std::string, std::string>>{{"\xFF", "key"}, {"C-1", "k\xC3"}}) {
    EXPECT_THROW(phone.facade->checkout({.code = code, .apiKey = key}), std::invalid_argument);
  }
  EXPECT_EQ(phone.screen(), "Product") << "the flow that was there goes on";
}

TEST(EntryCall, MadeInACallbackIsTheLastOne) {
  Phone phone;
  phone.showPaymentScreen();
  phone.host.tap("cancelAction");
  // The pending callback of the first flow must not run inside the second entry call.
  bool inside = false;
  const auto second = std::make_shared<HostApp>();
  phone.app->onOutcome = [&] { EXPECT_FALSE(inside) << "a callback inside an entry call"; };
  inside = true;
  OXOrlix::make()->checkout({.code = "C-1",
                             .apiKey = "second",
                             .system = kTestSystem,
                             .controller = phone.host.root(),
                             .delegate = second});
  inside = false;
  const auto third = std::make_shared<HostApp>();
  phone.app->onOutcome = [&] {
    OXOrlix::make()->preRegister("third", kLiveSystem, phone.host.root(), third);
  };
  phone.host.runFor(5s);
  EXPECT_EQ(phone.app->heard, kCancelled);
  EXPECT_EQ(phone.wallet.sent("/session/new", "platform").find("third") != std::string::npos, true);
  EXPECT_EQ(OXSession::currentSession()->system, kLiveSystem);
  EXPECT_TRUE(second->heard.empty());
}

TEST(EntryCall, OfTheSameFacadeMeetsWhatTheFormerOneLeft) {
  // An alert on the waiting screen goes, the waiting screen stays.
  Phone phone;
  phone.wallet.next("/session/new", unreachable());
  phone.checkout();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), kConnectionProblem);
  phone.wallet.next("/session/new", late(5s, phone.wallet.session));
  phone.checkout();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.screen(), "Waiting");
  phone.host.runUntilScreen("Product");
  EXPECT_TRUE(phone.host.locationManager().updating());
  // Another controller gets a waiting screen of its own, and the location rests until its payment.
  const auto other = std::make_shared<ViewController>();
  phone.wallet.next("/session/new", late(5s, phone.wallet.session));
  phone.facade = OXOrlix::make();
  phone.checkout();
  EXPECT_FALSE(phone.host.locationManager().updating());
  phone.facade->checkout({.code = "C-1", .apiKey = "key", .controller = other});
  phone.host.runUntilIdle();
  ASSERT_TRUE(other->presentedViewController());
  EXPECT_EQ(other->presentedViewController()->identifier(), "Waiting");
  EXPECT_EQ(phone.host.topController(), phone.host.root()) << "the former waiting screen goes";
}

}  // namespace orlix::test
