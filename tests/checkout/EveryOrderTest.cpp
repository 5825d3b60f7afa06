#include <random>

#include "orlixkit/platform/memory/Interleavings.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// Every order of the first events, then orders by lot, in which also threads overtake one another.
void inEveryOrder(const std::function<void(const Chooser&, bool preemptive)>& scenario) {
  Interleavings search({.depth = 4});
  search.run([&](const Chooser& chooser) {
    SCOPED_TRACE(search.choices());
    scenario(chooser, false);
  });
  EXPECT_TRUE(search.complete());
  for (unsigned seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 lot(seed);
    scenario([&lot](std::size_t count) { return lot() % count; }, true);
  }
}

/// A phone on the payment screen, from where on every order of events is open.
struct OpenPhone {
  OpenPhone(const Chooser& chooser, bool preemptive, const std::function<void(FakeWallet&)>& script)
      : phone(MemoryHostSettings{
            .chooser = [this, chooser](std::size_t count) { return open ? chooser(count) : 0; },
            .preemptive = preemptive}) {
    script(phone.wallet);
    phone.showPaymentScreen();
    screen = phone.host.topController();
    phone.host.type("pinField", "1234");
    open = true;
  }

  /// A touch that reaches the screen whenever it may come, even through an alert.
  void touch(const std::string& action) {
    phone.host.later(0s, [this, action] { screen->performAction(action); });
  }

  bool open = false;
  Phone phone;
  std::shared_ptr<ViewController> screen;
};

}  // namespace

TEST(EveryOrder, OfAnswersTapsAndAlertsEndsInOneCallbackAndPaysOnce) {
  struct Case {
    std::string name;
    std::function<void(FakeWallet&)> script;
    std::size_t mostPurchases;
  };
  const std::vector<Case> cases{
      {"paid", [](FakeWallet&) {}, 1},
      {"declined", [](FakeWallet& wallet) { wallet.purchase = R"({"status":"ERROR"})"; }, 1},
      {"the purchase fails", [](FakeWallet& w) { w.next("/purchase/", unreachable()); }, 2},
      {"a poll fails", [](FakeWallet& w) { w.next("/receipt/poll/", unreachable()); }, 1},
  };
  for (const Case& row : cases) {
    for (const std::string button : {"Retry", "Cancel"}) {
      SCOPED_TRACE(row.name + ", " + button);
      inEveryOrder([&](const Chooser& chooser, bool preemptive) {
        OpenPhone run(chooser, preemptive, row.script);
        run.touch("proceedAction");
        run.touch("proceedAction");
        run.phone.host.later(0s, [&] {
          if (run.phone.host.user().topAlert()) {
            run.phone.host.pressAlert(button);
          }
        });
        run.touch("cancelAction");
        run.phone.host.runFor(100s);
        EXPECT_LE(run.phone.wallet.asked("/purchase/"), row.mostPurchases);
        EXPECT_EQ(run.phone.app->heard.size(), 1U);
        EXPECT_EQ(run.phone.host.root()->presentedViewController(), nullptr);
        EXPECT_FALSE(run.phone.busy());
      });
    }
  }
}

TEST(EveryOrder, OfAPaymentAndASecondEntryCallLeavesEachHostItsOwnOutcome) {
  inEveryOrder([&](const Chooser& chooser, bool preemptive) {
    OpenPhone run(chooser, preemptive, [](FakeWallet& wallet) {
      wallet.next("/purchase/", ok(R"({"status":"SUCCESS","transactionId":1})"));
    });
    const auto first = run.phone.app;
    run.touch("proceedAction");
    run.phone.host.later(0s, [&] { run.phone.beginAnew(Entry::checkout); });
    run.touch("cancelAction");
    run.phone.host.runUntilScreen("Product");
    run.phone.host.runFor(100s);
    const auto second = run.phone.app;
    EXPECT_NE(second, first);
    EXPECT_LE(first->heard.size(), 1U);
    EXPECT_TRUE(second->heard.empty());
    run.phone.pay();
    run.phone.host.runFor(100s);
    const bool bothPaid = run.phone.wallet.asked("/purchase/") == 2;
    EXPECT_EQ(second->heard, Heard{bothPaid ? "succeeded 9007199254740993" : "succeeded 1"});
    EXPECT_LE(first->heard.size(), 1U);
  });
}

TEST(EveryOrder, OfTwoEntryCallsAtOnceTheLastOneCounts) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 lot(seed);
    Phone phone(
        {.chooser = [&lot](std::size_t count) { return lot() % count; }, .preemptive = true});
    phone.host.connections().on("/session/new/", [](const RecordedRequest& request) {
      const bool isFirst = request.body->find("first key") != std::string::npos;
      return ok(
          R"({"sessionId":")" + std::string(isFirst ? "first" : "second") +
          R"(","pinKey":"AAECAwQFBgcICQoLDA0ODw==","activated":true,"allowConnection":true})");
    });
    phone.facade->preRegister("first key", kTestSystem, phone.host.root(), phone.app);
    const auto first = phone.app;
    phone.beginAnew(Entry::checkout);
    phone.host.runFor(100s);
    EXPECT_EQ(phone.screen(), "Product");
    phone.pay();
    phone.host.runFor(100s);
    EXPECT_TRUE(first->heard.empty());
    EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
    const RecordedRequest purchase = phone.host.connections().requestsTo("/purchase/").back();
    EXPECT_EQ(purchase.header("x-session-token1"), "second");
  }
}

}  // namespace orlix::test
