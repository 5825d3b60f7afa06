#include <random>

#include "tests/phone/EveryOrder.h"

namespace orlix::test {

namespace {

/// From the payment screen on.
class PaymentFlow : public OrderedFlow {
 public:
  explicit PaymentFlow(const MemoryHostSettings& settings) : OrderedFlow(settings) {
    touch("Product", "proceedAction", [this] {
      if (!underWay_) {
        wantPurchase();
      }
      underWay_ = true;
    });
    touch("Product", "cancelAction", [this] { cancelled(); });
    const auto polls = [this] { return answers_->path().find("/receipt/") != std::string::npos; };
    event("no receipt yet", polls, [this] {
      abandoned_ = answers_->isStale(false);
      answers_->letGo(false, ok("{}"));
      pausing_ = true;
    });
    event(
        "the pause is over", [this] { return pausing_; },
        [this] {
          const std::size_t before = phone_->wallet.asked("/receipt/");
          phone_->host.runFor(2s);
          EXPECT_EQ(phone_->wallet.asked("/receipt/"), before + (goesOn() && !abandoned_ ? 1 : 0));
          pausing_ = false;
        });
    secondCall("second call of the same facade", true);
    phone_->showPaymentScreen();
    begin();
  }

 private:
  void retried(const std::string& path) override {
    if (path.find("/purchase") != std::string::npos) {
      wantPurchase();
    }
  }
  void givenUp(const std::string&) override { underWay_ = false; }
  void replaced() override {
    underWay_ = false;
    abandoned_ = true;
  }

  bool underWay_ = false;
  bool pausing_ = false;    ///< between two polls
  bool abandoned_ = false;  ///< they are those of the former flow
};

}  // namespace

TEST(EveryOrder, OfAPaymentPaysWhatTheUserAskedForAndCallsEachHostOnceAtMost) {
  walkEveryOrder("payment", 6, flow<PaymentFlow>());
}

TEST(EveryOrder, OfAPaymentHoldsAlsoWhereEventsMeetHalfWayAndThreadsOvertakeOneAnother) {
  const std::string pay = "Product.proceedAction";
  const std::string cancel = "Product.cancelAction";
  for (const std::vector<std::string>& events : std::vector<std::vector<std::string>>{
           {pay, "answer", "answer", cancel, pay},
           {pay, "no network", "Retry", "answer", cancel},
           {pay, "answer", "no network", "Cancel", cancel},
           {pay, "answer", "second entry call", cancel, "answer"}}) {
    SCOPED_TRACE(testing::PrintToString(events));
    meetAtOnce(events, flow<PaymentFlow>());
  }
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
