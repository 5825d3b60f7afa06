// SPDX-License-Identifier: Apache-2.0

#include <chrono>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/testing/TestUser.h"
#include "tests/RealPhone.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

using testing::HasSubstr;
using testing::Not;

struct OverTls : RealPhone {
  OverTls() {
    install(installOrlixKit, server.anchorPath());
    Host::current().application().showMainWindow(root);
    user = std::make_unique<TestUser>(Host::current().application());
  }

  /// Shows the payment screen with the card whose number ends so, types the PIN and pays.
  void pay(const std::string& code, const std::string& cardHint, const std::string& pin) {
    facade->checkout({.code = code,
                      .apiKey = "key",
                      .system = kTestSystem,
                      .controller = root,
                      .delegate = app});
    runUntil([this] { return user->topController()->identifier() == "Product"; });
    for (const CardOption& card : OXSession::currentSession()->cards) {
      if (card.cardHint == cardHint) {
        OXUtil::setLastUsedCardId(card.cardId);
      }
    }
    OXSession::currentSession()->showPurchaseScreen();
    user->type("pinField", pin);
    user->tap("proceedButton");
  }
  void runUntilOutcomeOrAlert() {
    runUntil([this] { return !app->heard.empty() || user->topAlert(); });
  }

  std::shared_ptr<ViewController> root = std::make_shared<ViewController>();
  std::shared_ptr<HostApp> app = std::make_shared<HostApp>();
  std::shared_ptr<OXOrlix> facade = OXOrlix::make();
  std::unique_ptr<TestUser> user;
};

}  // namespace

TEST(OverTls, APinCheckoutTakesOneHandshakeAndLeavesNoTraceOfThePin) {
  OverTls phone;
  const std::string pin = "987654321";
  phone.pay("BIG-REFERENCE", "7777", pin);
  phone.runUntilOutcomeOrAlert();
  EXPECT_THAT(phone.app->heard, testing::ElementsAre(HasSubstr("succeeded 90071992547409")));
  EXPECT_EQ(phone.counted("handshakes"), 1);
  const std::string purchases = boost::json::serialize(phone.control("/control/purchases"));
  EXPECT_THAT(purchases, HasSubstr("pinBlock"));
  EXPECT_THAT(purchases, Not(HasSubstr(pin)));
  EXPECT_FALSE(phone.log->contains(pin)) << phone.log->text();
  EXPECT_FALSE(phone.state.everyByte().empty());
  EXPECT_THAT(phone.state.everyByte(), Not(HasSubstr(pin)));
}

TEST(OverTls, WhatTheFacadeSaysOfAPurchaseIsWhatBecameOfItAtTheServer) {
  struct Case {
    std::string code, pin;
    std::size_t arrived;  ///< purchases, those answered 403 included
    std::string said;     ///< without the number
    bool hasNumber;
  };
  for (const Case& row : std::vector<Case>{
           {"FIXED-25", "1234", 1, "paid", true},
           {"FIXED-25", "9999", 1, "refused, the PIN", false},
           {"DECLINED", "1234", 1, "refused", false},
           {"RECEIPT-FAILED", "1234", 1, "refused", true},
           {"FORGET", "1234", 2, "paid", true},            // sent again in a new session
           {"SERVER-ERROR", "1234", 1, "unknown", false},  // not made, but 500 does not say so
           {"HANG-UP", "1234", 1, "unknown", false},       // made
           {"FIXED-25", "1", 0, "none", false}}) {         // a PIN that is not sent
    SCOPED_TRACE(row.code + " " + row.pin);
    OverTls phone;
    std::string said;
    phone.app->onOutcome = [&] {
      PurchaseStatus status = phone.facade->purchaseStatus();
      EXPECT_EQ(status.reference.has_value(), row.hasNumber);
      status.reference.reset();
      said = inWords(status);
    };
    phone.pay(row.code, "1111", row.pin);
    phone.runUntilOutcomeOrAlert();
    if (phone.app->heard.empty()) {
      phone.user->pressAlert(row.arrived == 0 ? "Ok" : "Cancel");
      phone.runUntil([&] { return !phone.user->topController()->presentedViewController(); });
      phone.user->tap("cancelAction");
      phone.runUntil([&] { return !phone.app->heard.empty(); });
    }
    EXPECT_EQ(said, row.said);
    EXPECT_EQ(phone.control("/control/purchases").at("purchases").as_array().size(), row.arrived);
  }
}

TEST(OverTls, TheHostsEndWaitsForNothingThatIsInFlight) {
  struct Case {
    std::string name, code, path;
    int times;
  };
  for (const Case& row : std::vector<Case>{
           {"a request whose answer stays away", "SILENCE", "/purchase/TALU", 1},
           {"a poll or the pause behind it", "NO-RECEIPT", "/receipt/poll/TALU", 1},
           {"sending again under ever new sessions", "FORBIDDEN", "/purchase/TALU", 3},
       }) {
    SCOPED_TRACE(row.name);
    OverTls phone;
    phone.pay(row.code, "1111", "1234");
    phone.runUntilAsked(row.path, row.times);
    const auto begun = std::chrono::steady_clock::now();
    Host::current().shutdown();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
    // Less than the shortest wait that it could be caught in, a pause of two seconds between polls.
    EXPECT_LT(took.count(), 1.5);
    EXPECT_TRUE(phone.app->heard.empty());
  }
}

}  // namespace orlix::test
