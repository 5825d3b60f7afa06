// SPDX-License-Identifier: Apache-2.0

// What becomes of a page that fails, comes late, comes twice or does not come, and what the user
// can do about it.

#include <fmt/format.h>

#include "tests/phone/Meddler.h"
#include "tests/phone/TroubledPorts.h"
#include "tests/securecode/Issuer.h"

namespace orlix::test {

namespace {

std::string pageInfo(int id) {
  return fmt::format(R"({{"cardSupported":true,"secureCodeId":{},"url":"u"}})", id);
}

std::string sentWith(int id) { return fmt::format(R"({{"PaRes":"PARES","secureCodeId":{}}})", id); }

const std::string kWarning = "Warning: ";

}  // namespace

TEST(IssuersPage, IsTheOneAskedForLastAndNoneOnceTheTerminationPageHasBeenSeen) {
  struct Row {
    std::string name;
    ServerReply first;
  };
  for (const Row& row : std::vector<Row>{{"another page", ok(pageInfo(31))},
                                         {"an error", ok(R"({"error":"late"})")},
                                         {"not enrolled", ok("{}")},
                                         {"a failure", ServerReply::of(500)}}) {
    for (const Duration lateness : {2s, 20s}) {
      SCOPED_TRACE(row.name + (lateness == 2s ? " before" : " after") + " the page has returned");
      Issuer phone;
      phone.begin();
      phone.wallet.next("/card/scUrl", ServerReply(row.first).after(lateness));
      phone.wallet.next("/card/scUrl", late(1s, pageInfo(32)));
      phone.wallet.always("/purchase", late(30s, kBought));
      phone.session->showSecureCodeScreen();
      phone.secureCodeScreen().loadSecureCodeInfo();
      phone.host.runFor(10s);
      EXPECT_EQ(phone.page().loads(), 1);
      phone.returnFromIssuer();
      phone.host.runFor(1min);
      EXPECT_EQ(phone.app->heard, Heard{"succeeded 4711"});
      EXPECT_EQ(phone.wallet.sent("/purchase", "secureCodeData"), sentWith(32));
    }
  }
}

TEST(IssuersPage, IsStoppedByARetryAndIgnoredFromThenOn) {
  Issuer phone;
  phone.showPaying();
  phone.page().failNavigation("no route");
  phone.host.runUntilAlert("Connection problem");
  phone.wallet.next("/card/scUrl", late(5s, pageInfo(32)));
  phone.press("Retry");
  EXPECT_FALSE(phone.page().isLive());
  phone.secureCodeScreen().didFailNavigation("stopped");
  phone.page().finishNavigation(kTerminationPage);
  phone.host.runFor(1s);
  EXPECT_EQ(phone.alert(), "");
  EXPECT_EQ(phone.wallet.asked("/purchase"), 0U);
}

TEST(IssuersPage, FailsWithOneAlertWhoseCancelKeepsAPageThatWasShown) {
  struct Row {
    std::string name;
    std::vector<std::string> shown;  // pages before the failure
    std::function<void(Issuer&)> answer;
    Heard heard;
    int loads = 1;
  };
  const auto press = [](const char* button) { return [button](Issuer& it) { it.press(button); }; };
  const auto finish = [](const std::string& page) {
    return [page](Issuer& it) {
      it.page().finishNavigation(page);
      it.host.runFor(1s);
    };
  };
  const std::string form = "<form name=\"frmLaunch\">";
  for (const Row& row : std::vector<Row>{
           {"a shown page stays", {form, kIssuersPage}, press("Cancel"), {}},
           {"a shown page gives way", {form, kIssuersPage}, press("Retry"), {}, 2},
           {"none was shown", {}, press("Cancel"), {"cancelled"}},
           {"only the form was shown", {form}, press("Cancel"), {"cancelled"}},
           {"only the form was shown, again", {form}, press("Retry"), {}, 2},
           {"the page works by now", {}, finish(kIssuersPage), {}},
           {"it returns by now", {kIssuersPage}, finish(kTerminationPage), {"succeeded 4711"}}}) {
    SCOPED_TRACE(row.name);
    Issuer phone;
    phone.host.webViews().onLoad = {};
    phone.showPaying();
    for (const std::string& page : row.shown) {
      phone.page().finishNavigation(page);
      phone.host.runUntilIdle();
    }
    for (int i = 0; i < 8; ++i) {
      phone.page().failNavigation("no route");
    }
    phone.host.runUntilAlert("Connection problem");
    EXPECT_EQ(phone.host.log().count("could not be loaded: no route"), 8U);
    row.answer(phone);
    EXPECT_EQ(phone.alert(), "");
    EXPECT_EQ(phone.app->heard, row.heard);
    if (row.heard.empty()) {
      EXPECT_EQ(phone.page().loads(), row.loads);
      phone.returnFromIssuer();
      EXPECT_EQ(phone.app->heard, Heard{"succeeded 4711"});
    }
    EXPECT_EQ(phone.wallet.asked("/purchase"), phone.app->heard == Heard{"cancelled"} ? 0U : 1U);
  }
}

TEST(IssuersPage, ThatCannotBeShownIsAnnouncedOnItsScreenAndEndsTheCheckoutOnceThatIsGone) {
  struct Row {
    std::string info, message;
    bool hasWebViews = true;
  };
  struct Way {
    std::string name;
    std::function<void(Issuer&)> go;
  };
  const std::string none = "The issuer sent no page.";
  for (const Row& row : std::vector<Row>{
           {R"({"error":"No such card"})", "An error occured. No such card"},
           {R"({"error":null,"cardSupported":true})", "An error occured. (null)"},
           {R"({"cardSupported":true})", none},
           {R"({"cardSupported":true,"url":"","payload":"p"})", none},
           {R"({"cardSupported":true,"htmlPresent":true})", none},
           {pageInfo(1), "This device cannot show the page of the card's issuer.", false}}) {
    for (const Way& way : std::vector<Way>{
             {"Ok", [](Issuer& phone) { phone.press("Ok"); }},
             {"CANCEL", [](Issuer& phone) { phone.secureCodeScreen().cancelTransaction(); }},
             {"lost", [](Issuer& phone) { phone.secureCodeScreen().dismiss(false); }}}) {
      SCOPED_TRACE(row.info + way.name);
      Issuer phone({.hasWebViews = row.hasWebViews});
      phone.wallet.always("/card/scUrl", row.info);
      phone.showPaying();
      phone.host.runFor(1s);
      ASSERT_EQ(phone.alert(), kWarning + row.message);
      EXPECT_EQ(phone.host.topController()->presentingViewController()->identifier(), "SecureCode");
      EXPECT_FALSE(phone.busy());
      EXPECT_TRUE(phone.app->heard.empty());
      way.go(phone);
      phone.host.runFor(1s);
      EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
      EXPECT_EQ(phone.screen(), "");
      EXPECT_EQ(phone.alert(), "");
    }
  }
}

TEST(IssuersPage, IsReadForTenSecondsAtMostAndStays) {
  Issuer phone;
  phone.host.webViews().onLoad = {};
  phone.showPaying();
  phone.page().holdScripts();
  phone.page().finishNavigation(kTerminationPage);
  phone.host.later(9s,
                   [&] { EXPECT_FALSE(phone.host.log().contains("evaluateJavaScript error")); });
  phone.host.runFor(11s);
  EXPECT_TRUE(phone.host.log().contains("evaluateJavaScript error : no answer within 10 seconds"));
  phone.page().releaseScripts();  // too late
  phone.host.runFor(1s);
  const auto markup = phone.secureCodeScreen().stringByEvaluatingJavaScriptFromString(
      "document.documentElement.outerHTML", phone.host.webViews().last());
  EXPECT_EQ(markup->text(), kTerminationPage);
  EXPECT_EQ(phone.wallet.asked("/purchase"), 0U);
  phone.page().failNavigation("no route");
  phone.host.runUntilAlert("Connection problem");
  phone.press("Cancel");
  EXPECT_EQ(phone.app->heard, Heard{}) << "a busy page is a page";
  phone.returnFromIssuer();
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 4711"});
}

TEST(IssuersPage, IsReadWithoutATimeLimitWhenThereIsNoThreadToMeasureIt) {
  std::shared_ptr<TroubledQueues> queues;
  Issuer phone({.adapt = [&](Ports& ports) {
    queues = std::make_shared<TroubledQueues>(ports.backgroundQueues);
    queues->onFailure = [] {};
    ports.backgroundQueues = queues;
  }});
  phone.showPaying();
  queues->failures = 1;
  phone.returnFromIssuer();
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 4711"});
  EXPECT_TRUE(phone.host.log().contains("A page is read without a time limit"));
}

TEST(SecureCode, TheHostMayEndTheFlowWheneverTheIndicatorChanges) {
  struct Row {
    std::string path, answer;
  };
  for (const Row& row : std::vector<Row>{{"", ""},
                                         {"/card/scUrl", R"({"error":"e"})"},
                                         {"/card/scUrl", "{}"},
                                         {"/purchase", R"({"status":"ERROR"})"},
                                         {"/purchase", ""},
                                         {"/receipt/poll", ""},
                                         {"/receipt/poll", R"({"status":"FAILED"})"}}) {
    for (int n = 1, left = 0; left <= 0; ++n) {
      SCOPED_TRACE(row.path + row.answer + ", change " + std::to_string(n));
      Issuer phone;
      if (!row.path.empty()) {
        phone.wallet.next(row.path, row.answer.empty() ? ServerReply::of(500) : ok(row.answer));
      }
      phone.begin();
      std::size_t sent = 0;
      bool ends = false;
      Meddler meddler(n, [&] {
        ends = phone.session->isLive();
        phone.session->returnUserDidCancel();
        sent = phone.host.requests().size();
      });
      phone.host.application().setObserver(&meddler);
      phone.session->showSecureCodeScreen();
      phone.host.runUntilIdle();
      if (const auto page = phone.host.webViews().last()) {
        page->finishNavigation(kTerminationPage);
      }
      phone.host.runFor(1min);
      if (!phone.alert().empty()) {
        phone.press(phone.alert() == kConnectionProblem ? "Retry" : "Ok");
        phone.host.runFor(1min);
      }
      left = meddler.left;
      EXPECT_EQ(phone.app->heard.size(), 1U);
      if (ends) {
        EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
        EXPECT_EQ(phone.host.requests().size(), sent) << "nothing is sent after the outcome";
      }
      phone.host.application().setObserver(nullptr);
    }
  }
}

}  // namespace orlix::test
