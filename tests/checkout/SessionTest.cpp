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
    begun.session->showCardsScreen();
    begun.host.runUntilIdle();
    EXPECT_EQ(begun.app->heard, Heard{expected});
    EXPECT_TRUE(screensWereGone);
    EXPECT_FALSE(begun.host.locationManager().updating());
    EXPECT_TRUE(begun.host.log().contains("ignoring returnError"));
  }
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
