#include <string>

#include <gtest/gtest.h>

#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

using std::chrono::seconds;

class Terms : public FlowTest {
 protected:
  /// With the lookup so slow that there is time to read.
  void beginChanged(Duration lookup) {
    flow.answer("/session/new", Answers::kNewTerms);
    flow.answer("/lookup/query/v2/", R"({"codeInfo":{"code":"C","amountString":"1.00"}})", lookup);
    flow.begin(Entry::checkout, "TermsAndConditionChange", "");
  }
};

TEST_F(Terms, ChangedOnesAreShownWithTheirControlCharacterUntilTheLookupAnswers) {
  beginChanged(seconds(10));
  EXPECT_EQ(flow.shown("descriptionLabel"),
            "We have updated our terms and conditions. \x03"
            "By clicking on proceed you accept the new Orlix terms and conditions found "
            "<a href=''>here</a>");
  EXPECT_TRUE(flow.host.user().outlet<Label>("descriptionLabel")->isHtml());
  flow.host.runFor(seconds(11));
  EXPECT_EQ(flow.screen(), "Product") << "the lookup's answer replaces the question";
  EXPECT_EQ(flow.requestsTo("/profile/updateTC"), 0U);
}

TEST_F(Terms, AcceptingWaitsForTheServerWhateverItAnswers) {
  beginChanged(seconds(100));
  flow.answer("/profile/updateTC", R"({"status":"FAILED"})", seconds(2));
  flow.host.runFor(seconds(1));  // the lookup is under way, and must not hold the acceptance back
  const SteadyTime before = flow.host.clock().steadyNow();
  flow.host.tap("proceedButton");
  EXPECT_EQ(flow.host.clock().steadyNow() - before, seconds(2)) << "on the main thread";
  EXPECT_FALSE(flow.indicatorIsUp());
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.requestsTo("/profile/updateTC"), 1U);
  EXPECT_EQ(flow.screen(), "Product");
}

TEST_F(Terms, AFailureToAcceptTravelsUpAndLeavesTheUserThere) {
  beginChanged(seconds(20));
  flow.fail("/profile/updateTC");
  EXPECT_THROW(flow.host.topController()->performAction("proceedAction"), NetworkException);
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "TermsAndConditionChange");
  EXPECT_EQ(flow.alert(), "");
  flow.answer("/profile/updateTC", "{}");
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "Product");
}

TEST_F(Terms, PageIsReachedFromBothSentences) {
  for (const bool changed : {true, false}) {
    Flow& fresh = anew();
    fresh.answer("/session/new", changed ? Answers::kNewTerms : Answers::kNotActivated);
    fresh.answer("/lookup/", "{}", seconds(1000));
    fresh.begin(Entry::checkout, changed ? "TermsAndConditionChange" : "Activation", "");
    fresh.host.tap("descriptionLabel");
    fresh.host.runUntilScreen("TermsAndConditions");
    fresh.host.runUntilIdle();
    const auto page = fresh.host.webViews().last();
    ASSERT_TRUE(page);
    EXPECT_EQ(page->address(), "https://www.example/terms/tavlo.html");
    EXPECT_EQ(Host::current().application().progressIndicator().status(), "Please wait");
    EXPECT_TRUE(Host::current().application().progressIndicator().blocksInput());
    page->finishNavigation("<html><head></head></html>");
    fresh.host.runUntilIdle();
    EXPECT_FALSE(fresh.indicatorIsUp());
    ASSERT_EQ(page->scripts().size(), 1U);
    EXPECT_NE(page->scripts()[0].find("maximum-scale=10.0"), std::string::npos);
    fresh.host.tap("backButton");
    fresh.host.runUntilScreen(changed ? "TermsAndConditionChange" : "Activation");
  }
}

TEST_F(Terms, AFailedPageKeepsTheIndicatorUntilTheUserGoesBack) {
  beginChanged(seconds(1000));
  flow.host.tap("descriptionLabel");
  flow.host.runUntilScreen("TermsAndConditions");
  flow.host.webViews().last()->failNavigation("no such host");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.alert(), "");
  EXPECT_TRUE(flow.indicatorIsUp());
  flow.host.tap("backButton");
  flow.host.runUntilScreen("TermsAndConditionChange");
  EXPECT_FALSE(flow.indicatorIsUp());
}

TEST_F(Terms, NoIndicatorForAPageThatWasFasterThanTheScreenOrNeverComes) {
  flow.host.webViews().onLoad = [](FakeWebView& page) { page.finishNavigation("<html></html>"); };
  beginChanged(seconds(1000));
  flow.host.tap("descriptionLabel");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "TermsAndConditions");
  EXPECT_FALSE(flow.indicatorIsUp());

  Flow& without = anew({.hasWebViews = false});
  without.answer("/session/new", Answers::kNotActivated);
  without.begin(Entry::checkout, "Activation", "");
  without.host.tap("descriptionLabel");
  without.host.runUntilScreen("TermsAndConditions");
  EXPECT_FALSE(without.indicatorIsUp());
  EXPECT_TRUE(without.host.log().contains("Unable to show the terms"));
  without.host.tap("backButton");
  without.host.runUntilScreen("Activation");
}

}  // namespace
}  // namespace orlix
