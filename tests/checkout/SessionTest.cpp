// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXUtil.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// A phone with a session of its own, as an entry call leaves it.
struct Begun : Phone {
  std::shared_ptr<OXSession> session;

  Begun() {
    addPlainScreens({"Cards", "AddCard", "SecureCode"});
    OXSession::reset();
    session = OXSession::currentSession();
    session->presentingController = host.root();
    session->delegate = app;
  }
};

}  // namespace

TEST(Session, EachReturnStopsThePositionTakesTheScreensAwayAndCallsOnce) {
  using Return = std::function<void(OXSession&)>;
  const std::vector<std::pair<std::string, Return>> returns{
      {"cancelled", [](OXSession& s) { s.returnUserDidCancel(); }},
      {"registered", [](OXSession& s) { s.returnUserRegistered(); }},
      {"wallet done", [](OXSession& s) { s.returnUserDoneWithWallet(); }},
      {"succeeded 7", [](OXSession& s) { s.returnPaymentSucceededWithTransactionReference("7"); }},
      {"failed 8", [](OXSession& s) { s.returnPaymentFailedWithTransactionReference("8"); }},
      {"error 6", [](OXSession& s) { s.returnError(6); }},
      {"invalid code", [](OXSession& s) { s.returnInvalidCode(); }},
  };
  for (const auto& [expected, doReturn] : returns) {
    SCOPED_TRACE(expected);
    Begun begun;
    begun.session->showPurchaseScreen();
    begun.session->cvv = SecretString("123");
    bool screensWereGone = false;
    begun.app->onOutcome = [&] {
      screensWereGone = begun.host.root()->presentedViewController() == nullptr;
    };
    doReturn(*begun.session);
    EXPECT_FALSE(begun.session->isLive() || begun.session->cvv);
    EXPECT_TRUE(begun.app->heard.empty()) << "before the screens were gone";
    for (const auto& other : returns) {
      other.second(*begun.session);
    }
    begun.session->returnAuth3DsValidated();
    begun.session->showCardsScreen();
    begun.host.runUntilIdle();
    EXPECT_EQ(begun.app->heard, Heard{expected});
    EXPECT_TRUE(screensWereGone);
    EXPECT_FALSE(begun.host.locationManager().updating());
    EXPECT_TRUE(begun.host.log().contains("ignoring returnError"));
    EXPECT_TRUE(begun.host.log().contains("ignoring returnAuth3DsValidated"));
  }
}

TEST(Session, WithoutADelegateTheScreensGoAllTheSame) {
  const std::vector<std::pair<bool, void (OXSession::*)()>> returns{
      {false, &OXSession::returnUserDidCancel}, {true, &OXSession::returnAuth3DsValidated}};
  for (const auto& [staysLive, doReturn] : returns) {
    Begun begun;
    begun.session->delegate.reset();
    begun.session->showPurchaseScreen();
    ((*begun.session).*doReturn)();
    begun.host.runUntilIdle();
    EXPECT_EQ(begun.host.root()->presentedViewController(), nullptr);
    EXPECT_EQ(begun.session->isLive(), staysLive);
  }
}

TEST(Session, WhileItPaysOnlyTheIssuersPageTakesTheScreensPlace) {
  Begun begun;
  begun.session->showPurchaseScreen();
  begun.session->beginPayment();
  begun.session->showCardsScreen();
  EXPECT_EQ(begun.screen(), "Product");
  EXPECT_TRUE(begun.host.log().contains("A payment is in progress; ignoring the screen Cards."));
  begun.session->showSecureCodeScreen();
  EXPECT_EQ(begun.screen(), "SecureCode");
  begun.session->endPayment();
  begun.session->showCardsScreen();
  EXPECT_EQ(begun.screen(), "Cards");
}

TEST(Session, WhatWaitsForTheEndOfAPaymentIsDroppedWhenTheFlowEndsBefore) {
  Begun begun;
  bool ran = false;
  begun.session->beginPayment();
  begun.session->whenNotPaying("first", [](OXSession& s) { s.returnUserDidCancel(); });
  begun.session->whenNotPaying("second", [&ran](OXSession&) { ran = true; });
  begun.session->endPayment();
  EXPECT_FALSE(begun.session->isLive() || ran);
}

TEST(Session, ARequestBeforeTheFirstStartFailsLikeOneWithoutANetwork) {
  Begun begun;
  OXOrlix::loadCards();
  begun.host.runUntilIdle();
  EXPECT_EQ(begun.alert(), kConnectionProblem);
  EXPECT_TRUE(begun.host.requests().empty());
}

TEST(Session, AReplacedOneLetsGoOfItsHostAndTheNextBeginsBare) {
  Begun begun;
  begun.session->cvv = SecretString("123");
  OXSession::reset();
  EXPECT_FALSE(begun.session->cvv);
  begun.session->returnUserDidCancel();
  begun.host.runUntilIdle();
  EXPECT_TRUE(begun.app->heard.empty());
  const std::weak_ptr<HostApp> host = begun.app;
  begun.app.reset();
  EXPECT_TRUE(host.expired());
  const auto fresh = OXSession::currentSession();
  EXPECT_FALSE(fresh->code || fresh->inAmount || fresh->codeInfo || fresh->cvv || fresh->delegate);
}

}  // namespace orlix::test
