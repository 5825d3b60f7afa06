#include <chrono>
#include <optional>

#include <gmock/gmock.h>

#include "orlixkit/checkout/OXSession.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

using namespace std::chrono_literals;

const std::string kStages[] = {"opening the session",
                               "looking the code up",
                               "choosing",
                               "paying",
                               "polling",
                               "pausing",
                               "alert",
                               "alert answered",
                               "leaving"};

void bring(Phone& phone, const std::string& stage) {
  const ServerReply slow = ServerReply().after(9s).status(200).body("{}");
  if (stage == "opening the session") {
    phone.wallet.next("/session/new/", slow);
  } else if (stage == "looking the code up") {
    phone.wallet.next("/lookup/", slow);
  } else if (stage == "paying") {
    phone.wallet.next("/purchase/", slow);
  } else if (stage == "polling") {
    phone.wallet.next("/receipt/poll/", slow);
  } else if (stage == "pausing") {
    phone.wallet.receipt = "{}";
  } else {
    phone.wallet.nextFails("/purchase/");
  }
  phone.checkout();
  phone.host.runFor(1s);
  if (phone.screen() == "Product" && stage == "leaving") {
    phone.host.tap("cancelAction");
  } else if (phone.screen() == "Product" && stage != "choosing") {
    phone.pay();
    phone.host.runFor(1s);
  }
  if (stage == "alert answered") {
    phone.host.pressAlert("Retry");
  }
}

}  // namespace

TEST(EndOfTheHost, AtEveryStageNobodyIsCalledBackAndNothingIsLeft) {
  for (const std::string& stage : kStages) {
    SCOPED_TRACE(stage);
    std::optional<Phone> phone(std::in_place);
    bring(*phone, stage);
    const auto app = phone->app;
    const std::weak_ptr<ViewController> top = phone->host.topController();
    const std::weak_ptr<ViewController> screen = phone->host.root()->presentedViewController();
    const std::weak_ptr<OXSession> session = OXSession::currentSession();
    const SteadyTime before = phone->host.clock().steadyNow();
    phone->host.shutdown();
    EXPECT_EQ(phone->host.clock().steadyNow(), before);
    phone.reset();
    EXPECT_TRUE(app->heard.empty());
    EXPECT_TRUE(top.expired());
    EXPECT_TRUE(screen.expired());
    EXPECT_TRUE(session.expired());
  }
}

TEST(EndOfTheHost, ThePinIsInNoLogNoBodyAndNoStore) {
  const std::string pin = "860427";
  Phone phone;
  phone.wallet.cards = R"([{"cardId":5,"cardHint":"4242","method":"AMT","needCvv":true}])";
  phone.wallet.nextFails("/purchase/");
  phone.wallet.next("/purchase/", ServerReply::of(403));
  phone.showPaymentScreen();
  phone.host.type("cvvField", "937");
  phone.pay(pin);
  EXPECT_THAT(phone.shown("pinField"), testing::Not(testing::HasSubstr("8")));
  phone.host.runUntilAlert("Connection problem");
  phone.host.pressAlert("Retry");
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  EXPECT_EQ(phone.wallet.asked("/purchase/"), 3U);
  for (const RecordedRequest& request : phone.host.requests()) {
    EXPECT_EQ(request.body.value_or("").find(pin), std::string::npos) << request.url;
    for (const auto& [name, value] : request.headers) {
      EXPECT_EQ(value.find(pin), std::string::npos) << name;
    }
  }
  EXPECT_FALSE(phone.host.log().contains(pin));
  EXPECT_FALSE(phone.host.log().contains("937"));
  EXPECT_FALSE(phone.host.userDefaults()->holds(pin));
  EXPECT_FALSE(phone.host.userDefaults()->holds("937"));
}

}  // namespace orlix::test
