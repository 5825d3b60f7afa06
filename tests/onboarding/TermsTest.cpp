// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OMTermsAndConditionsViewController.h"
#include "orlixkit/records/Failures.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// Before the question about changed terms, with a lookup so slow that there is time to read.
struct ChangedTerms : Phone {
  explicit ChangedTerms(Duration lookup, MemoryHostSettings settings = {})
      : Phone(std::move(settings)) {
    wallet.session = answers::kNewTerms;
    wallet.always("/lookup/", late(lookup, R"({"codeInfo":{"code":"C","amountString":"1.00"}})"));
    begin(Entry::checkout, "TermsAndConditionChange");
  }
};

}  // namespace

TEST(Terms, ChangedOnesAreShownWithTheirControlCharacterUntilTheLookupAnswers) {
  ChangedTerms phone(10s);
  EXPECT_EQ(phone.shown("descriptionLabel"),
            "We have updated our terms and conditions. \x03"
            "By clicking on proceed you accept the new Orlix terms and conditions found "
            "<a href=''>here</a>");
  EXPECT_TRUE(phone.host.user().outlet<Label>("descriptionLabel")->isHtml());
  phone.host.runFor(11s);
  EXPECT_EQ(phone.screen(), "Product") << "the lookup's answer replaces the question";
  EXPECT_EQ(phone.wallet.asked("/profile/updateTC"), 0U);
}

TEST(Terms, AcceptingWaitsForTheServerWhateverItAnswersAndAFailureTravelsUp) {
  ChangedTerms phone(100s);
  phone.wallet.next("/profile/updateTC", unreachable());
  phone.wallet.always("/profile/updateTC", late(2s, answers::kFailed));
  phone.host.runFor(1s);  // the lookup is under way, and must not hold the acceptance back
  phone.mainMayWait = true;
  EXPECT_THROW(phone.act("proceedAction"), NetworkException);
  phone.host.runFor(1s);
  EXPECT_EQ(phone.screen(), "TermsAndConditionChange");
  const SteadyTime before = phone.host.clock().steadyNow();
  phone.host.tap("proceedButton");
  EXPECT_EQ(phone.host.clock().steadyNow() - before, 2s) << "on the main thread";
  EXPECT_FALSE(phone.busy());
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.wallet.asked("/profile/updateTC"), 2U);
  EXPECT_EQ(phone.screen(), "Product");
}

TEST(Terms, PageIsReachedFromBothSentencesAndAFailedOneKeepsTheIndicatorUntilTheUserGoesBack) {
  for (const bool loads : {true, false}) {
    Phone phone;
    phone.wallet.session = loads ? answers::kNewTerms : answers::kNotActivated;
    phone.wallet.always("/lookup/", late(1000s, "{}"));
    const std::string before = loads ? "TermsAndConditionChange" : "Activation";
    phone.begin(Entry::checkout, before);
    phone.host.tap("descriptionLabel");
    phone.host.runUntilScreen("TermsAndConditions");
    const auto page = phone.host.webViews().last();
    ASSERT_TRUE(page);
    EXPECT_EQ(page->address(), "https://www.example/terms/tavlo.html");
    EXPECT_EQ(phone.indicator().status(), "Please wait");
    EXPECT_TRUE(phone.indicator().blocksInput());
    loads ? page->finishNavigation("<html><head></head></html>")
          : page->failNavigation("no such host");
    phone.host.runFor(1s);
    EXPECT_EQ(phone.alert(), "");
    EXPECT_EQ(phone.busy(), !loads);
    ASSERT_EQ(page->scripts().size(), loads ? 1U : 0U);
    EXPECT_TRUE(!loads || page->scripts()[0].find("maximum-scale=10.0") != std::string::npos);
    phone.host.tap("backButton");
    phone.host.runUntilScreen(before);
    phone.host.runFor(1s);  // the indicator fades out
    EXPECT_FALSE(phone.busy());
  }
}

TEST(Terms, APageThatIsThereBeforeItsScreenShowsNoProgress) {
  ChangedTerms phone(1000s);
  phone.host.tap("descriptionLabel");
  dynamic_cast<OMTermsAndConditionsViewController&>(*phone.host.topController())
      .didFinishNavigation();
  phone.host.runUntilScreen("TermsAndConditions");
  phone.host.runFor(1s);
  EXPECT_FALSE(phone.busy());
}

TEST(Terms, WithoutAWebViewThePageIsEmptyAndAnErrorOfAnOlderOneIsShown) {
  ChangedTerms phone(1000s, {.hasWebViews = false});
  phone.host.tap("descriptionLabel");
  phone.host.runUntilScreen("TermsAndConditions");
  phone.host.runFor(1s);
  EXPECT_FALSE(phone.busy());
  EXPECT_TRUE(phone.host.log().contains("Unable to show the terms"));
  dynamic_cast<OMTermsAndConditionsViewController&>(*phone.host.topController())
      .didFailLoadWithError("no such host");
  phone.host.runFor(1s);
  EXPECT_EQ(phone.alert(), "Error: no such host");
  phone.press("Ok");
  phone.tap("backButton");
  EXPECT_EQ(phone.screen(), "TermsAndConditionChange");
}

}  // namespace orlix::test
