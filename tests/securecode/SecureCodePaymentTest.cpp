// SPDX-License-Identifier: Apache-2.0

#include "tests/securecode/Issuer.h"

namespace orlix::test {

TEST(SecureCode, PaysWithThePaResOfTheTerminationPage) {
  Issuer phone;
  phone.showPaying();
  for (const char* field :
       {"value='PAREQ'", "value='https://test.example/vello/secure_code.jsp'"}) {
    EXPECT_NE(phone.page().html().find(field), std::string::npos) << field;
  }
  EXPECT_EQ(phone.wallet.asked("/purchase"), 0U) << "the issuer's own page is left alone";
  phone.wallet.next("/purchase", late(3s, kBought));
  phone.returnFromIssuer();
  phone.returnFromIssuer();  // a page that loads itself once more
  phone.page().failNavigation("no route");
  phone.page().killProcess();
  phone.host.runFor(2s);
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 4711"});
  EXPECT_EQ(phone.screen(), "");
  EXPECT_EQ(phone.wallet.asked("/purchase"), 1U);
  const std::vector<std::pair<std::string, std::string>> keys{
      {"secureCodeData", R"({"PaRes":"PARES","secureCodeId":31})"},
      {"cardId", "7"},
      {"amount", "12.50"},
      {"cvv", "123"},
      {"code", "CODE"}};
  for (const auto& [key, value] : keys) {
    EXPECT_EQ(phone.wallet.sent("/purchase", key), value);
  }
  EXPECT_EQ(phone.wallet.asked("/card/validate"), 0U);
}

TEST(SecureCode, EveryAnswerHasItsOneEnding) {
  struct Case {
    std::string path, answer;
    Heard heard;
  };
  for (const Case& row : std::vector<Case>{
           {"/card/scUrl", R"({"cardSupported":false})", {"error 6"}},
           {"/card/scUrl", "{}", {"error 6"}},
           {"/purchase", R"({"status":"ERROR"})", {"error 2"}},
           {"/purchase", "{}", {"error 2"}},
           {"/receipt/poll", R"({"status":"FAILED"})", {"failed 4711"}},
           {"/receipt/poll", R"({"status":"success"})", {"failed 4711"}},
       }) {
    SCOPED_TRACE(row.path + row.answer);
    Issuer phone;
    phone.wallet.always(row.path, row.answer);
    phone.showPaying();
    if (phone.app->heard.empty()) {
      phone.returnFromIssuer();
    }
    phone.host.runUntilIdle();
    EXPECT_EQ(phone.app->heard, row.heard);
    EXPECT_EQ(phone.alert(), "");
    EXPECT_EQ(phone.screen(), "");
  }
}

TEST(SecureCode, LoadsThePageOnceWhicheverIsFirst) {
  for (const Duration latency : {Duration(0), Duration(5s)}) {
    Issuer phone;
    phone.host.connections().setLatency(latency);
    phone.begin();
    phone.host.runFor(30s);
    // Animated, so that the screen appears some time after it has been loaded.
    phone.host.root()->present(phone.host.application().storyboard().make("SecureCode"), true);
    phone.host.runFor(30s);
    EXPECT_EQ(phone.page().loads(), 1);
  }
}

TEST(SecureCode, WhatComesWhileThePageIsReadEndsOnceAtMost) {
  struct Case {
    std::string name;
    std::function<void(Issuer&)> meanwhile;
    std::size_t purchases;
    Heard heard;
  };
  for (const Case& row : std::vector<Case>{
           {"the page navigates",
            [](Issuer& phone) { phone.page().finishNavigation(kTerminationPage); },
            1,
            {"succeeded 4711"}},
           {"it navigates on",
            [](Issuer& phone) { phone.page().finishNavigation(kIssuersPage); },
            0,
            {}},
           {"its process dies", [](Issuer& phone) { phone.page().killProcess(); }, 0, {}},
           {"cancel wins", [](Issuer& phone) { phone.host.tap("cancelButton"); }, 0, {"cancelled"}},
           {"the host's end ends the wait", [](Issuer& phone) { phone.host.shutdown(); }, 0, {}},
       }) {
    SCOPED_TRACE(row.name);
    Issuer phone;
    phone.showPaying();
    const auto view = phone.host.webViews().last();
    view->holdScripts();
    view->finishNavigation(kTerminationPage);
    phone.host.later(1s, [&] { row.meanwhile(phone); });
    phone.host.later(2s, [&] { view->releaseScripts(); });
    phone.host.runFor(10s);
    EXPECT_EQ(phone.wallet.asked("/purchase"), row.purchases);
    EXPECT_EQ(phone.app->heard, row.heard);
  }
}

TEST(SecureCode, EveryFailedStepIsRetriedOrCancelled) {
  struct Case {
    std::string path;
    std::function<void(FakeWebView&)> fault;
  };
  for (const Case& row : std::vector<Case>{
           {"/card/scUrl", {}},
           {"/purchase", {}},
           {"/receipt/poll", {}},
           {"page process dies", [](FakeWebView& view) { view.killProcess(); }},
       }) {
    for (const std::string answer : {"Retry", "Cancel"}) {
      SCOPED_TRACE(row.path + ", " + answer);
      Issuer phone;
      phone.wallet.next(row.path, ServerReply::of(500));
      phone.showPaying();
      if (row.fault) {
        row.fault(phone.page());
      } else if (row.path != "/card/scUrl") {
        phone.returnFromIssuer();
      }
      phone.host.runUntilAlert("Connection problem");
      EXPECT_TRUE(phone.app->heard.empty());
      EXPECT_FALSE(phone.busy());
      phone.host.connections().setLatency(1s);
      phone.press(answer);
      if (answer == "Retry") {
        EXPECT_EQ(phone.indicator().status(), "Please wait");
        EXPECT_TRUE(phone.indicator().isShownFor(phone.secureCodeScreen()));
        phone.host.runFor(5s);
      }
      if (answer == "Retry" && phone.app->heard.empty()) {
        phone.returnFromIssuer();
        phone.host.runFor(5s);
      }
      EXPECT_EQ(phone.app->heard, Heard{answer == "Retry" ? "succeeded 4711" : "cancelled"});
    }
  }
}

TEST(SecureCode, AReceiptThatNeverComesReportsNothingAndIsLeftByCancel) {
  Issuer phone;
  phone.wallet.receipt = "";
  phone.showPaying();
  phone.page().finishNavigation(kTerminationPage);
  phone.host.runFor(5min);
  EXPECT_TRUE(phone.app->heard.empty());
  EXPECT_EQ(phone.alert(), "");
  EXPECT_FALSE(phone.busy());
  phone.tap("cancelButton");
  EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
}

TEST(SecureCode, BothRoadsSayWhatIsKnownOfThePurchaseWhenTheyEnd) {
  struct Case {
    std::string purchase, receipt, paying, authenticating;
  };
  const std::string success = R"({"status":"SUCCESS"})";
  for (const Case& row : std::vector<Case>{
           {kBought, success, "paid 4711", "none"},  // authenticated: nothing is paid yet
           {kBought, R"({"status":"FAILED"})", "refused 4711", "refused 4711"},
           {kBought, "{}", "unknown 4711", "unknown 4711"},
           {"{}", "", "unknown", "unknown"},
           {R"({"status":"ERROR"})", "", "refused", "refused"}}) {
    SCOPED_TRACE(row.purchase + row.receipt);
    for (const bool paying : {true, false}) {
      Issuer phone;
      phone.wallet.purchase = row.purchase;
      phone.wallet.receipt = row.receipt;
      std::string known;
      phone.app->onOutcome = [&] { known = inWords(phone.session->purchases()->status()); };
      paying ? phone.showPaying() : phone.showAuthenticating();
      EXPECT_EQ(inWords(phone.session->purchases()->status()), "none");
      phone.returnFromIssuer();
      phone.host.runFor(5min);
      if (phone.app->heard.empty()) {
        phone.tap("cancelButton");
      }
      EXPECT_EQ(known, paying ? row.paying : row.authenticating);
    }
  }
}

TEST(SecureCode, ACardToBeValidatedIsMarkedFirstAndCancelReportsWhatIsCertainByThen) {
  struct Case {
    bool pays;
    int marking;
    bool cancels;
    Heard heard;
  };
  for (const Case& row : std::vector<Case>{{true, 200, false, {"succeeded 4711"}},
                                           {true, 500, false, {"succeeded 4711"}},
                                           {true, 200, true, {"succeeded 4711"}},
                                           {false, 200, true, {"cancelled"}}}) {
    Issuer phone;
    phone.wallet.always("/card/validate/", ServerReply().after(30s).status(row.marking).body("{}"));
    phone.begin();
    phone.session->mustValidateCard = true;
    row.pays ? phone.session->showSecureCodeScreen() : phone.session->show3DAuthSecureCodeScreen();
    phone.host.runUntilIdle();
    phone.returnFromIssuer();
    EXPECT_TRUE(phone.app->heard.empty());
    if (row.cancels) {
      phone.tap("cancelButton");
      EXPECT_EQ(phone.app->heard, row.heard) << "at once";
    }
    phone.host.runFor(1min);
    EXPECT_EQ(phone.app->heard, row.heard);
    EXPECT_EQ(phone.wallet.asked("/card/validate"), 1U);
    EXPECT_EQ(phone.host.log().contains("Ignoring exception on validateCard"), row.marking == 500);
  }
}

TEST(SecureCode, ACardIsAuthenticatedWithoutAnAmountAndCountsAsValidatedOnlyThen) {
  struct Case {
    std::string receipt;
    int marking;
    Heard heard;
    std::size_t marked;
  };
  for (const Case& row : std::vector<Case>{{R"({"status":"SUCCESS"})", 200, {"validated"}, 1},
                                           {R"({"status":"FAILED"})", 200, {"failed 4711"}, 0},
                                           {R"({"status":"SUCCESS"})", 500, {"cancelled"}, 1}}) {
    Issuer phone;
    phone.wallet.receipt = row.receipt;
    phone.wallet.always("/card/validate/", ServerReply::of(row.marking, "{}"));
    phone.showAuthenticating();
    phone.returnFromIssuer();
    if (row.marking == 500) {  // ends in the log, and leaves the user a cancel
      EXPECT_TRUE(phone.app->heard.empty());
      phone.tap("cancelButton");
    }
    EXPECT_EQ(phone.app->heard, row.heard);
    EXPECT_EQ(phone.wallet.asked("/auth3Ds"), 1U);
    EXPECT_EQ(phone.wallet.asked("/purchase"), 0U);
    EXPECT_EQ(phone.wallet.asked("/card/validate"), row.marked);
    EXPECT_EQ(phone.wallet.sent("/auth3Ds", "amount"), "(none)");
    EXPECT_EQ(phone.wallet.lastBody("/card/get3dsValidateUrl"), "{\n  \"cardId\" : 7\n}");
  }
}

}  // namespace orlix::test
