#include <gtest/gtest.h>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

struct AuthenticationEar : OX3DSecureOrlixDelegate {
  int validated = 0;
  void auth3DsValidated() override { ++validated; }
};

/// A phone with a session of its own, as an entry call leaves it.
struct Begun {
  Phone phone;
  std::shared_ptr<OXSession> session;

  Begun() {
    phone.addPlainScreens({"Cards", "AddCard", "SecureCode"});
    OXSession::reset();
    session = OXSession::currentSession();
    session->presentingController = phone.host.root();
    session->delegate = phone.app;
  }
};

}  // namespace

TEST(Session, AFreshOneIsEmptyAndLive) {
  Begun begun;
  begun.session->system = 1;
  OXSession::reset();
  const auto fresh = OXSession::currentSession();
  EXPECT_NE(fresh, begun.session);
  EXPECT_TRUE(fresh->isLive());
  EXPECT_EQ(fresh->system, 0);
  EXPECT_EQ(fresh->delegate, nullptr);
  EXPECT_EQ(fresh->presentingController, nullptr);
  EXPECT_FALSE(fresh->code || fresh->inAmount || fresh->codeInfo || fresh->cvv);
  EXPECT_FALSE(fresh->preRegister || fresh->walletManagement || fresh->mustValidateCard);
}

TEST(Session, TheAmountIsFixedOnlyWhenHostAndCodeBothFixIt) {
  struct Case {
    std::optional<std::string> inAmount;
    bool hasCodeInfo;
    std::optional<std::string> amountString;
    bool fixed;
  };
  for (const Case& row : std::vector<Case>{{"10", true, {}, false},
                                           {"10", true, "", false},
                                           {"10", true, "25.00", true},
                                           {{}, true, "25.00", false},
                                           {"10", false, {}, false}}) {
    Begun begun;
    begun.session->inAmount = row.inAmount;
    if (row.hasCodeInfo) {
      begun.session->codeInfo.emplace().amountString = row.amountString;
    }
    EXPECT_EQ(begun.session->isNotVariableAmount(), row.fixed);
  }
}

TEST(Session, OfTwoShownScreensTheSecondStands) {
  Begun begun;
  begun.session->showCardsScreen();
  begun.session->showAddCardScreen();
  EXPECT_EQ(begun.phone.screen(), "AddCard");
  EXPECT_EQ(begun.phone.host.root()->presentedViewController()->presentedViewController(), nullptr);
  EXPECT_NE(begun.phone.host.topController()->presentationController(), nullptr);
}

TEST(Session, AShownScreenTakesTheAlertOnTheFormerOneWithIt) {
  Begun begun;
  begun.session->showCardsScreen();
  OXUtil::showAlertWithTitle("Warning", "text");
  begun.session->showAddCardScreen();
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(begun.phone.screen(), "AddCard");
}

TEST(Session, OnlyThePaymentScreenIsGivenTheLookedUpValues) {
  Begun begun;
  begun.session->codeInfo.emplace().merchantName = "Shop";
  begun.session->system = 1;
  begun.session->showPurchaseScreen();
  EXPECT_EQ(begun.phone.shown("merchantView"), "Shop");
  EXPECT_FALSE(begun.phone.hidden("testWarningLabel"));
}

TEST(Session, AMissingScreenIsToldToTheUser) {
  Begun begun;
  Storyboard& storyboard = begun.phone.host.application().storyboard();
  const auto onMissing = storyboard.onMissing;
  storyboard = Storyboard();
  storyboard.onMissing = onMissing;
  begun.session->showWalletManagementScreen();
  EXPECT_EQ(begun.phone.alert(), "Error: The storyboard has no screen \"WalletManagement\".");
}

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
    bool screensWereGone = false;
    begun.phone.app->onOutcome = [&] {
      screensWereGone = begun.phone.host.root()->presentedViewController() == nullptr;
    };
    doReturn(*begun.session);
    EXPECT_FALSE(begun.session->isLive());
    EXPECT_TRUE(begun.phone.app->heard.empty()) << "before the screens were gone";
    for (const auto& other : returns) {
      other.second(*begun.session);
    }
    begun.session->showCardsScreen();
    begun.phone.host.runUntilIdle();
    EXPECT_EQ(begun.phone.app->heard, Heard{expected});
    EXPECT_TRUE(screensWereGone);
    EXPECT_FALSE(begun.phone.host.locationManager().updating());
    EXPECT_TRUE(begun.phone.host.log().contains("ignoring returnError"));
  }
}

TEST(Session, AReturnWithoutAHostStillTakesTheScreensAway) {
  Begun begun;
  begun.session->delegate.reset();
  begun.session->showPurchaseScreen();
  begun.session->returnError(2);
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(begun.phone.host.root()->presentedViewController(), nullptr);
  EXPECT_FALSE(begun.phone.host.locationManager().updating());
}

TEST(Session, WithoutAPresentingControllerNothingIsShownAndNobodyIsCalled) {
  Begun begun;
  begun.session->presentingController.reset();
  begun.session->showPurchaseScreen();
  begun.session->returnUserDidCancel();
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(begun.phone.screen(), "");
  EXPECT_TRUE(begun.phone.app->heard.empty());
}

TEST(Session, AnAuthenticatedCardIsNoEnd) {
  Begun begun;
  const auto ear = std::make_shared<AuthenticationEar>();
  begun.session->delegate3DSecure = ear;
  begun.session->showSecureCodeScreen();
  begun.session->returnAuth3DsValidated();
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(ear->validated, 1);
  EXPECT_TRUE(begun.session->isLive());
  begun.session->returnUserDidCancel();
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(begun.phone.app->heard, Heard{"cancelled"});
}

TEST(Session, AReplacedOneLetsGoOfItsHostAndDoesNothingMore) {
  Begun begun;
  const auto old = begun.session;
  const std::weak_ptr<HostApp> host = begun.phone.app;
  old->delegate3DSecure = std::make_shared<AuthenticationEar>();
  OXSession::reset();
  begun.phone.app.reset();
  EXPECT_TRUE(host.expired());
  EXPECT_EQ(old->delegate3DSecure, nullptr);
  old->showPurchaseScreen();
  old->returnUserDidCancel();
  old->returnAuth3DsValidated();
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(begun.phone.screen(), "");
}

TEST(Session, TheCallbackOfAnEndedFlowIsMadeThoughTheSessionIsReplacedMeanwhile) {
  Begun begun;
  begun.session->showPurchaseScreen();
  begun.session->returnError(2);
  OXSession::reset();
  begun.phone.host.runUntilIdle();
  EXPECT_EQ(begun.phone.app->heard, Heard{"error 2"});
}

}  // namespace orlix::test
