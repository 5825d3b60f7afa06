#include <string>

#include <gtest/gtest.h>

#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

class CardValidation : public FlowTest {
 protected:
  void begin(const std::string& validationType) {
    flow.setCards(
        {cardJson(7, "0007", R"(,"validated":false,"validationtype":")" + validationType + "\"")});
    flow.begin(Entry::checkout, "Product", "");
    flow.host.tap("proceedButton");
    flow.host.runUntilIdle();
    ASSERT_EQ(flow.screen(), "CardValidation");
  }
};

TEST_F(CardValidation, AsksForTheDateOfBirthAndSendsItFromTheYear) {
  begin("DOB");
  EXPECT_EQ(flow.shown("infoLabel"), "CONFIRM THAT YOU ARE THE OWNER OF THIS CARD ENDING IN 0007?");
  flow.host.type("dateOfBirthField", "3112199");
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.alert(), "Warning: Enter a valid date of birth DD/MM/YYY");
  EXPECT_EQ(flow.requestsTo("/card/validate/"), 0U);
  flow.host.pressAlert("Ok");
  flow.host.runUntilIdle();
  flow.host.type("dateOfBirthField", "9");
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.sent("/card/validate/", "inputValue"), "1999-12-31");
  EXPECT_EQ(flow.sent("/card/validate/", "validate"), "true");
  EXPECT_EQ(flow.sent("/card/validate/", "cardId"), "7");
  EXPECT_EQ(flow.requestsTo("/lookup/"), 2U);
  EXPECT_EQ(flow.screen(), "Product");
}

TEST_F(CardValidation, AsksForNothingWhenTheCardNeedsNoDate) {
  begin("SIMPLE");
  EXPECT_TRUE(flow.host.user().outlet<View>("dateOfBirthField")->isOutOfSight());
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.sent("/card/validate/", "inputValue"), "");
  EXPECT_EQ(flow.sent("/card/validate/", "validate"), "true");
}

TEST_F(CardValidation, TakesEveryOtherSentenceForARemovedCard) {
  for (const std::string message :
       {R"({"message":"Your card has been added."})", R"({"message":"your card has been added"})",
        R"({"message":null})", "{}"}) {
    Flow& fresh = anew();
    fresh.setCards({cardJson(7, "0007", R"(,"validated":false,"validationtype":"SIMPLE")")});
    fresh.begin(Entry::checkout, "Product", "");
    fresh.host.tap("proceedButton");
    fresh.host.runUntilScreen("CardValidation");
    fresh.answer("/card/validate/", message);
    fresh.host.tap("proceedButton");
    fresh.host.runUntilAlert("Warning");
    EXPECT_EQ(fresh.alert(),
              "Warning: YOUR DATE OF BIRTH WAS NOT CORRECT. YOUR CARD HAS BEEN REMOVED.")
        << message;
    EXPECT_FALSE(fresh.indicatorIsUp()) << message;
    EXPECT_EQ(fresh.requestsTo("/lookup/"), 1U) << message;
    fresh.setCards({});
    fresh.host.pressAlert("Cancel");
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.screen(), "Product") << message;
    EXPECT_EQ(fresh.shown("cardHintView"), "Add Card") << message;
  }
}

TEST_F(CardValidation, CancelLeadsBackToThePaymentScreen) {
  begin("DOB");
  flow.host.tap("cancelButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "Product");
  EXPECT_EQ(flow.application->calls, Calls{});
}

}  // namespace
}  // namespace orlix
