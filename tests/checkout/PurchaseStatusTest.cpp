// SPDX-License-Identifier: Apache-2.0

// What the facade knows of a purchase when the flow has ended, and afterwards.
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

const ServerReply kAccepted = ok(R"({"status":"SUCCESS","transactionId":77})");
const ServerReply kRefused = ok(R"({"status":"ERROR","transactionId":78})");

/// A phone whose host asks in the callback.
struct Asking : Phone {
  Asking() {
    app->onOutcome = [this] { inCallback = inWords(facade->purchaseStatus()); };
  }
  /// As a user who gives up wherever that is possible.
  void leave() {
    if (!alert().empty()) {
      press("Cancel");
    }
    if (screen() == "Product") {
      tap("cancelAction");
    }
  }
  std::string inCallback = "no callback";
};

}  // namespace

TEST(PurchaseStatus, SaysWhatTheServerSaidAndNothingMore) {
  struct Case {
    std::string name;
    std::vector<ServerReply> purchases;
    std::string receipt, expected;
  };
  const std::string success = R"({"status":"SUCCESS"})";
  const std::vector<Case> cases{
      {"paid", {kAccepted}, success, "paid 77"},
      {"paid without a number", {ok(success)}, success, "paid"},
      {"declined", {kRefused}, "", "refused 78"},
      {"wrong PIN", {ok(R"({"status":"INVALID_PASSWORD"})")}, "", "refused, the PIN"},
      {"a status of a later protocol", {ok(R"({"status":"LATER"})")}, "", "unknown"},
      {"no status", {ok("{}")}, "", "unknown"},
      {"the server fails", {ServerReply::of(500)}, "", "unknown"},
      {"no answer", {ServerReply().silence()}, "", "unknown"},
      {"the connection breaks", {unreachable()}, "", "unknown"},
      {"no JSON", {ok("<html>")}, "", "unknown"},
      {"the receipt says no", {kAccepted}, R"({"status":"FAILED"})", "refused 77"},
      {"the receipt never comes", {kAccepted}, "{}", "unknown 77"},
      {"the receipt cannot be read", {kAccepted}, "oops", "unknown 77"},
      {"sent again after a 403", {ServerReply::of(403), kAccepted}, success, "paid 77"},
      {"lost after a 403", {ServerReply::of(403), unreachable()}, "", "unknown"},
      {"declined after a 403", {ServerReply::of(403), kRefused}, "", "refused 78"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Asking phone;
    for (const ServerReply& reply : row.purchases) {
      phone.wallet.next("/purchase/", reply);
    }
    phone.wallet.receipt = row.receipt;
    phone.showPaymentScreen();
    phone.pay();
    phone.host.runFor(200s);
    phone.leave();
    EXPECT_EQ(phone.inCallback, row.expected);
    EXPECT_EQ(inWords(phone.facade->purchaseStatus()), row.expected);
  }
}

TEST(PurchaseStatus, AnEarlierPurchaseThatMayHaveGoneThroughIsNotForgotten) {
  struct Case {
    std::string name, button;
    ServerReply first, second;
    std::string receipt, expected;
  };
  const std::string failed = R"({"status":"FAILED"})";
  const std::vector<Case> cases{
      {"lost, then declined", "Cancel", unreachable(), kRefused, "", "unknown"},
      {"lost, then a receipt that says no", "Cancel", unreachable(), kAccepted, failed, "unknown"},
      {"lost, retried and declined", "Retry", unreachable(), kRefused, "", "unknown"},
      {"lost, retried and paid", "Retry", unreachable(), kAccepted, R"({"status":"SUCCESS"})",
       "paid 77"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Asking phone;
    phone.wallet.next("/purchase/", row.first);
    phone.wallet.next("/purchase/", row.second);
    phone.wallet.receipt = row.receipt;
    phone.showPaymentScreen();
    phone.pay();
    phone.host.runUntilAlert("Connection problem");
    phone.press(row.button);
    if (row.button == "Cancel") {
      phone.pay();
    }
    phone.host.runFor(200s);
    EXPECT_EQ(phone.inCallback, row.expected);
  }
}

TEST(PurchaseStatus, IsNoneAsLongAsNoByteHasLeft) {
  struct Case {
    std::string name, session;
    std::function<void(Asking&)> meanwhile;
  };
  const std::string noKey = R"({"sessionId":"s1","activated":true,"allowConnection":true})";
  for (const Case& row : std::vector<Case>{
           {"not paid at all", answers::kSession, [](Asking&) {}},
           {"withdrawn while the connection is made", answers::kSession,
            [](Asking& phone) {
              phone.host.connections().setConnectTime(5s);
              phone.pay();
              phone.host.runFor(1s);
            }},
           {"no key for the PIN", noKey,
            [](Asking& phone) {
              phone.pay();
              phone.host.runUntilAlert("Connection problem");
            }},
           {"no PIN", answers::kSession,
            [](Asking& phone) {
              phone.pay("1");
              phone.press("Ok");
            }},
       }) {
    SCOPED_TRACE(row.name);
    Asking phone;
    phone.wallet.session = row.session;
    phone.showPaymentScreen();
    row.meanwhile(phone);
    phone.leave();
    phone.host.runFor(100s);
    EXPECT_EQ(phone.inCallback, "none");
    EXPECT_EQ(phone.wallet.asked("/purchase/"), 0U);
  }
}

TEST(PurchaseStatus, A403WithoutANewSessionIsARefusal) {
  Asking phone;
  phone.showPaymentScreen();
  phone.wallet.next("/purchase/", ServerReply::of(403));
  phone.wallet.next("/session/new", unreachable());
  phone.pay();
  phone.host.runUntilAlert("Connection problem");
  phone.leave();
  EXPECT_EQ(phone.inCallback, "refused");
}

TEST(PurchaseStatus, AnAnswerThatComesAfterTheUserHasLeftStillCounts) {
  struct Case {
    ServerReply purchase;
    std::string later;
  };
  for (const Case& row :
       std::vector<Case>{{late(5s, R"({"status":"SUCCESS","transactionId":77})"), "unknown 77"},
                         {late(5s, R"({"status":"ERROR"})"), "refused"}}) {
    Asking phone;
    phone.wallet.next("/purchase/", row.purchase);
    phone.showPaymentScreen();
    phone.pay();
    phone.host.runFor(1s);
    phone.leave();
    EXPECT_EQ(phone.inCallback, "unknown");
    phone.host.runFor(10s);
    EXPECT_EQ(inWords(phone.facade->purchaseStatus()), row.later);
    EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
  }
}

TEST(PurchaseStatus, BelongsToTheFlowOfItsFacade) {
  Asking phone;
  EXPECT_EQ(inWords(phone.facade->purchaseStatus()), "none");
  phone.wallet.receipt = "{}";
  phone.showPaymentScreen();
  phone.pay();
  phone.host.runFor(1s);
  const std::shared_ptr<OXOrlix> former = phone.facade;
  phone.begin(Entry::checkout, "Product");
  EXPECT_EQ(inWords(former->purchaseStatus()), "unknown 9007199254740993");
  EXPECT_EQ(inWords(phone.facade->purchaseStatus()), "none");
  former->checkoutWithCode("C-1", 0, "key", kTestSystem, phone.host.root(), phone.app);
  EXPECT_EQ(inWords(former->purchaseStatus()), "none");
}

TEST(PurchaseStatus, TellsWhatError2MeansWhenMemoryHasRunOut) {
  Asking phone;
  phone.wallet.next("/purchase/", ServerReply().silence());
  phone.showPaymentScreen();
  phone.pay();
  phone.host.runFor(1s);
  phone.host.mainQueue().async([] { throw std::bad_alloc(); });
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.app->heard, Heard{"error 2"});
  EXPECT_EQ(phone.inCallback, "unknown");
}

}  // namespace orlix::test
