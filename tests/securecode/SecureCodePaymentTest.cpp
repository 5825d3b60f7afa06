#include <functional>

#include "tests/securecode/SecureCodeFixture.h"

namespace orlix {
namespace {

using namespace std::chrono_literals;

TEST_F(SecureCode, PaysWithThePaResOfTheTerminationPage) {
  showPaying();
  EXPECT_NE(page().html().find("value='PAREQ'"), std::string::npos);
  EXPECT_NE(page().html().find("value='https://test.example/vello/secure_code.jsp'"),
            std::string::npos);
  EXPECT_EQ(sent("/purchase"), 0U) << "the issuer's own page is left alone";
  returnFromIssuer();
  EXPECT_EQ(ear->heard, Ear{"succeeded 4711"});
  EXPECT_TRUE(isOver());
  ASSERT_EQ(sent("/purchase"), 1U);
  const std::string body = host.connections().requestsTo("/purchase")[0].body.value();
  for (const char* part : {R"("PaRes" : "PARES")", R"("secureCodeId" : 31)", R"("cardId" : 7)",
                           R"("amount" : "12.50")", R"("cvv" : "123")", R"("code" : "CODE")"}) {
    EXPECT_NE(body.find(part), std::string::npos) << part << " in " << body;
  }
  EXPECT_EQ(sent("/card/validate"), 0U);
}

TEST_F(SecureCode, EveryAnswerHasItsOneEnding) {
  struct Row {
    const char* name;
    const char* path;
    const char* answer;
    const char* heard;
  };
  const Row rows[] = {
      {"card not enrolled", "/card/scUrl", R"({"cardSupported":false})", "error 6"},
      {"enrolment unknown", "/card/scUrl", "{}", "error 6"},
      {"purchase refused", "/purchase", R"({"status":"ERROR"})", "error 2"},
      {"purchase without status", "/purchase", "{}", "error 2"},
      {"receipt failed", "/receipt/poll", R"({"status":"FAILED"})", "failed 4711"},
      {"receipt in lower case", "/receipt/poll", R"({"status":"success"})", "failed 4711"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ear->heard.clear();
    host.connections().on(row.path, ServerReply::of(200, row.answer));
    showPaying();
    if (!isOver()) {
      returnFromIssuer();
    }
    EXPECT_EQ(ear->heard, Ear{row.heard});
    EXPECT_TRUE(isOver());
    host.connections().on("/card/scUrl",
                          ServerReply::of(200, R"({"cardSupported":true,"secureCodeId":31})"));
    host.connections().on("/purchase",
                          ServerReply::of(200, R"({"status":"SUCCESS","transactionId":4711})"));
  }
}

TEST_F(SecureCode, AnErrorInThePageInformationCancelsAndIsShownOverTheHostsScreen) {
  host.connections().on("/card/scUrl", ServerReply::of(200, R"({"error":"No such card"})"));
  showPaying();
  EXPECT_EQ(ear->heard, Ear{"cancelled"});
  host.runUntilAlert("Warning");
  EXPECT_EQ(host.user().topAlert()->message(), "An error occured. No such card");
  host.pressAlert("Ok");
  host.runUntilIdle();
  EXPECT_EQ(ear->heard, Ear{"cancelled"});
}

TEST_F(SecureCode, LoadsThePageOnceWhicheverIsFirst) {
  for (const Duration latency : {Duration(0), Duration(5s)}) {
    host.connections().setLatency(latency);
    begin();
    host.runFor(30s);
    auto screen = host.application().storyboard().make("SecureCode");
    // Animated, so that the screen appears some time after it has been loaded.
    host.root()->present(screen, true);
    host.runFor(30s);
    EXPECT_EQ(page().loads(), 1);
    host.root()->dismiss(false);
  }
}

TEST_F(SecureCode, ATerminationPageThatLoadsTwicePaysOnce) {
  showPaying();
  page().finishNavigation(kTerminationPage);
  page().finishNavigation(kTerminationPage);
  host.runFor(1s);
  EXPECT_EQ(sent("/purchase"), 1U);
  EXPECT_EQ(ear->heard, Ear{"succeeded 4711"});
}

TEST_F(SecureCode, APageThatNavigatesWhileItIsReadPaysOnce) {
  showPaying();
  page().holdScripts();
  page().finishNavigation(kTerminationPage);
  host.later(1s, [this] { page().finishNavigation(kTerminationPage); });
  host.later(2s, [this] { page().releaseScripts(); });
  host.runFor(10s);
  EXPECT_EQ(sent("/purchase"), 1U);
  EXPECT_EQ(ear->heard, Ear{"succeeded 4711"});
}

TEST_F(SecureCode, ACancelWhileThePageIsReadWins) {
  showPaying();
  page().holdScripts();
  page().finishNavigation(kTerminationPage);
  host.later(1s, [this] { host.tap("cancelButton"); });
  host.later(2s, [this] {
    if (auto view = host.webViews().last()) {
      view->releaseScripts();
    }
  });
  host.runFor(10s);
  EXPECT_EQ(sent("/purchase"), 0U);
  EXPECT_EQ(ear->heard, Ear{"cancelled"});
}

TEST_F(SecureCode, AShutdownWhileThePageIsReadEndsTheWait) {
  showPaying();
  page().holdScripts();
  page().finishNavigation(kTerminationPage);
  host.later(1s, [this] { host.shutdown(); });
  host.runFor(5s);
  EXPECT_EQ(sent("/purchase"), 0U);
  EXPECT_EQ(ear->heard, Ear{});
}

TEST_F(SecureCode, APageThatNeverReturnsIsLeftByCancel) {
  showPaying();
  host.runFor(1h);
  const auto view = host.webViews().last();
  host.tap("cancelButton");
  host.runUntilIdle();
  view->finishNavigation(kTerminationPage);
  host.runUntilIdle();
  EXPECT_EQ(ear->heard, Ear{"cancelled"});
  EXPECT_EQ(sent("/purchase"), 0U);
}

TEST_F(SecureCode, EveryFailedStepIsRetriedOrCancelled) {
  struct Row {
    const char* name;
    const char* path;
    std::function<void(FakeWebView&)> fault;
  };
  const Row rows[] = {
      {"page information", "/card/scUrl", {}},
      {"purchase", "/purchase", {}},
      {"receipt", "/receipt/poll", {}},
      {"page does not load", "", [](FakeWebView& view) { view.failNavigation("no route"); }},
      {"page process dies", "", [](FakeWebView& view) { view.killProcess(); }},
  };
  for (const Row& row : rows) {
    for (const char* answer : {"Retry", "Cancel"}) {
      SCOPED_TRACE(std::string(row.name) + ", " + answer);
      ear->heard.clear();
      bool broken = true;
      const std::string path = row.path;
      if (!path.empty()) {
        host.connections().on(path, [&broken, path](const RecordedRequest&) {
          if (broken) {
            return ServerReply::of(500);
          }
          return ServerReply::of(200, R"({"cardSupported":true,"status":"SUCCESS",
                                         "transactionId":4711})");
        });
      }
      showPaying();
      if (row.fault) {
        row.fault(page());
      } else if (path != "/card/scUrl") {
        returnFromIssuer();
      }
      host.runUntilAlert("Connection problem");
      EXPECT_EQ(ear->heard, Ear{});
      broken = false;
      host.pressAlert(answer);
      host.runUntilIdle();
      if (std::string(answer) == "Cancel") {
        EXPECT_EQ(ear->heard, Ear{"cancelled"});
        continue;
      }
      if (ear->heard.empty()) {
        returnFromIssuer();
      }
      EXPECT_EQ(ear->heard, Ear{"succeeded 4711"});
    }
  }
}

TEST_F(SecureCode, AReceiptThatNeverComesReportsNothingAndIsLeftByCancel) {
  host.connections().on("/receipt/poll", ServerReply::of(200, ""));
  showPaying();
  page().finishNavigation(kTerminationPage);
  host.runFor(5min);
  EXPECT_EQ(ear->heard, Ear{});
  EXPECT_TRUE(host.log().contains("Receipt polling timed out after 60 seconds."));
  EXPECT_FALSE(host.application().progressIndicator().visible());
  host.tap("cancelButton");
  host.runUntilIdle();
  EXPECT_EQ(ear->heard, Ear{"cancelled"});
}

TEST_F(SecureCode, ACardToBeValidatedIsMarkedBeforeTheSuccessIsReported) {
  for (const int status : {200, 500}) {
    ear->heard.clear();
    host.connections().forgetRequests();
    host.connections().on("/card/validate", [status](const RecordedRequest&) {
      return ServerReply().after(3s).status(status).body("{}");
    });
    begin();
    session->mustValidateCard = true;
    session->showSecureCodeScreen();
    host.runUntilIdle();
    page().finishNavigation(kTerminationPage);
    host.runFor(1s);
    EXPECT_EQ(ear->heard, Ear{});
    host.tap("cancelButton");  // too late: the payment has succeeded
    host.runFor(10s);
    EXPECT_EQ(ear->heard, Ear{"succeeded 4711"});
    EXPECT_EQ(sent("/card/validate"), 1U);
    EXPECT_EQ(host.log().contains("Ignoring exception on validateCard"), status == 500);
  }
}

TEST(SecureCodeWithoutWebView, TheUserIsToldAndTheCheckoutIsCancelled) {
  SecureCodeRun run({.install = installOrlixKit, .hasWebViews = false});
  run.showPaying();
  EXPECT_EQ(run.ear->heard, std::vector<std::string>{"cancelled"});
  run.host.runUntilAlert("Warning");
}

}  // namespace
}  // namespace orlix
