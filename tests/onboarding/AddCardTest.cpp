#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/widgets/DropDownPicker.h"
#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

using std::chrono::seconds;

class AddCard : public FlowTest {
 protected:
  void begin(const std::string& binInfo, Entry entry = Entry::wallet) {
    flow.answer("/card/bin/", binInfo);
    flow.beginAddCard(entry);
  }

  void proceed(const std::string& number = "4000123412341234") {
    flow.proceedWithCard(number);
    flow.host.runUntilIdle();
  }
};

TEST_F(AddCard, ChecksNumberAndNameBeforeItAsksTheServer) {
  struct Row {
    std::string name;
    std::string number;
    std::string holder;
    std::string alert;
  };
  const std::vector<Row> rows{
      {"nothing", "", "", "Warning: Invalid card number"},
      {"13 digits", "4000123412341", "A N Other", "Warning: Invalid card number"},
      {"13 digits and their blanks", "4000 1234 1234 1", "A N Other",
       "Warning: Invalid card number"},
      {"14 letters", "abcdefghijklmn", "A N Other", ""},
      {"19 digits", "4000123412341234567", "A N Other", ""},
      {"a name of two letters", "4000123412341234", "AN", "Warning: Invalid card holder name"},
      {"a name of two characters of two bytes", "4000123412341234", "ÉÉ",
       "Warning: Invalid card holder name"},
      {"a name of three letters", "4000123412341234", "ANO", ""},
  };
  begin(R"({"cardSupported":false})");
  for (const Row& row : rows) {
    flow.host.connections().forgetRequests();
    flow.host.user().replaceAll("cardNumberField", "");
    flow.host.user().replaceAll("cardHolderField", "");
    flow.host.type("cardNumberField", row.number);
    flow.host.type("cardHolderField", row.holder);
    flow.host.tap("proceedButton");
    flow.host.runUntilIdle();
    const bool asked = row.alert.empty();
    EXPECT_EQ(flow.alert(), asked ? "Warning: This bank card is not supported" : row.alert)
        << row.name;
    EXPECT_EQ(flow.requestsTo("/card/bin/"), asked ? 1U : 0U) << row.name;
    flow.host.pressAlert("Ok");
    flow.host.runUntilIdle();
  }
}

TEST_F(AddCard, AsksForWhatTheIssuerNeedsAndSendsNothingElse) {
  struct Row {
    std::string name;
    std::string binInfo;
    std::string expiry;
    std::string birth;
    std::string alert;
    std::string sentMonth, sentYear, sentBirth, sentHolder;
  };
  const std::vector<Row> rows{
      {"nothing needed", "", "13/01", "1", "", "", "", "", ""},
      {"expiry", R"(,"needExp":true)", "0340", "", "", "03", "40", "", ""},
      {"month 0", R"(,"needExp":true)", "0040", "", "", "00", "40", "", ""},
      {"month 13", R"(,"needExp":true)", "1340", "", "Warning: Invalid expiry date", "", "", "",
       ""},
      {"expired", R"(,"needExp":true)", "0224", "", "Warning: Invalid expiry date", "", "", "", ""},
      {"this month", R"(,"needExp":true)", "0324", "", "", "03", "24", "", ""},
      {"no expiry", R"(,"needExp":true)", "", "", "Warning: Invalid expiry date", "", "", "", ""},
      {"birth", R"(,"needDob":true)", "", "31121999", "", "", "", "19991231", ""},
      {"no such birth", R"(,"needDob":true)", "", "99999999", "", "", "", "99999999", ""},
      {"short birth", R"(,"needDob":true)", "", "3112199",
       "Warning: Enter a valid date of birth DD/MM/YYYY", "", "", "", ""},
      {"holder", R"(,"needCardHolderName":true)", "", "", "", "", "", "", "A N Other"},
      {"expiry is judged before birth", R"(,"needExp":true,"needDob":true)", "13", "3",
       "Warning: Invalid expiry date", "", "", "", ""},
  };
  for (const Row& row : rows) {
    Flow& fresh = anew();
    fresh.answer("/card/bin/", R"({"cardSupported":true)" + row.binInfo + "}");
    fresh.beginAddCard(Entry::wallet);
    fresh.host.type("expiryDateField", row.expiry);
    fresh.host.type("dateOfBirthField", row.birth);
    fresh.proceedWithCard("4000123412341234");
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.alert(), row.alert) << row.name;
    EXPECT_EQ(fresh.sent("/card/bin/", "bin"), "400012341") << row.name;
    EXPECT_EQ(fresh.requestsTo("/card/link/"), row.alert.empty() ? 1U : 0U) << row.name;
    if (row.alert.empty()) {
      EXPECT_EQ(fresh.sent("/card/link/", "cardNumber"), "4000123412341234") << row.name;
      EXPECT_EQ(fresh.sent("/card/link/", "expiryMonth"), row.sentMonth) << row.name;
      EXPECT_EQ(fresh.sent("/card/link/", "expiryYear"), row.sentYear) << row.name;
      EXPECT_EQ(fresh.sent("/card/link/", "dateOfBirth"), row.sentBirth) << row.name;
      EXPECT_EQ(fresh.sent("/card/link/", "cardHolderName"), row.sentHolder) << row.name;
      EXPECT_EQ(fresh.sent("/card/link/", "account"), "") << row.name;
      EXPECT_EQ(fresh.sent("/card/link/", "linkedMsisdn"), "") << row.name;
    } else {
      EXPECT_FALSE(fresh.indicatorIsUp()) << row.name;
    }
  }
}

TEST_F(AddCard, RevealsTheAccountFirstWithoutAWord) {
  begin(R"({"cardSupported":true,"needAccount":true})");
  EXPECT_TRUE(flow.host.user().outlet<View>("cardAccountField")->isOutOfSight());
  proceed();
  EXPECT_EQ(flow.alert(), "");
  EXPECT_FALSE(flow.indicatorIsUp());
  EXPECT_FALSE(flow.host.user().outlet<View>("cardAccountField")->isOutOfSight());
  proceed();
  EXPECT_EQ(flow.alert(), "Warning: Please select an account.");
  flow.host.pressAlert("Ok");
  flow.host.runUntilIdle();
  flow.host.type("cardAccountField", "my own");
  EXPECT_EQ(flow.shown("cardAccountField"), "") << "it is picked, not typed";
  const auto picker = DropDownPicker::of(*flow.host.user().outlet<TextField>("cardAccountField"));
  EXPECT_EQ(picker->entries(), (std::vector<std::string>{"Savings", "Current", "Credit"}));
  picker->pick("Current");
  EXPECT_EQ(flow.requestsTo("/card/link/"), 0U);
  proceed();
  EXPECT_EQ(flow.requestsTo("/card/bin/"), 3U);
  EXPECT_EQ(flow.sent("/card/link/", "account"), "Current");
}

TEST_F(AddCard, SendsWhereTheDeviceIs) {
  begin(Answers::kNothingNeeded, Entry::checkout);
  LocationFix fix;
  fix.latitude = -26.5;
  fix.longitude = 28.25;
  flow.host.locationManager().sendFixes({fix});
  proceed();
  EXPECT_EQ(flow.sent("/card/link/", "locationInfo"), "[G:-26.5,28.25]");
}

TEST_F(AddCard, TakesTheFirstCardOfTheAnswerAndTheConfirmationTheLast) {
  begin(Answers::kNothingNeeded);
  proceed();
  EXPECT_EQ(flow.lastUsedCard(), 11);

  Flow& other = anew();
  other.answer("/card/link/", Answers::kRelink);
  other.beginAddCard(Entry::wallet);
  other.proceedWithCard();
  other.host.runUntilScreen("MsisdnRelink");
  other.answer("/card/link/", Answers::kLinked);
  other.host.type("msisdnField", " 082 123");
  other.host.tap("proceedButton");
  other.host.runUntilIdle();
  EXPECT_EQ(other.lastUsedCard(), 12);
  EXPECT_EQ(other.sent("/card/link/", "linkedMsisdn"), " 082 123") << "as it was typed";
  EXPECT_EQ(other.sent("/card/link/", "cardNumber"), "4000123412341234");
}

TEST_F(AddCard, GoesOnWithoutACardWhenTheAnswerListsNone) {
  begin(Answers::kNothingNeeded);
  flow.answer("/card/link/", R"({"status":"SUCCESS"})");
  proceed();
  EXPECT_EQ(flow.lastUsedCard(), 0);
}

TEST_F(AddCard, SaysWhatTheServerAnswered) {
  begin(Answers::kNothingNeeded);
  flow.answer("/card/link/", Answers::kFailed);
  proceed();
  EXPECT_EQ(flow.alert(), "Warning: There seems to be some problem adding this card");
  EXPECT_FALSE(flow.indicatorIsUp());
  flow.host.pressAlert("Ok");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "AddCard");
  flow.answer("/card/link/", R"({"status":"SOMETHING"})");
  proceed();
  EXPECT_EQ(flow.alert(), "");
  EXPECT_TRUE(flow.indicatorIsUp()) << "it stays up on an answer that says nothing";
}

TEST_F(AddCard, ConfirmationSaysWhatTheServerAnswered) {
  begin(Answers::kNothingNeeded);
  flow.answer("/card/link/", Answers::kRelink);
  proceed();
  ASSERT_EQ(flow.screen(), "MsisdnRelink");
  EXPECT_FALSE(flow.indicatorIsUp());
  const std::vector<std::pair<std::string, std::string>> rows{
      {Answers::kFailed, "Warning: It seems this mobile number is incorrect"},
      {Answers::kRelink, "Warning: There seems to be some problem adding this card"},
      {"{}", ""},
  };
  for (const auto& [body, alert] : rows) {
    flow.answer("/card/link/", body);
    flow.host.tap("proceedButton");
    flow.host.runUntilIdle();
    EXPECT_EQ(flow.alert(), alert) << body;
    EXPECT_FALSE(flow.indicatorIsUp()) << body;
    if (!alert.empty()) {
      flow.host.pressAlert("Ok");
      flow.host.runUntilIdle();
    }
    EXPECT_EQ(flow.screen(), "MsisdnRelink") << body;
  }
  flow.host.tap("backButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "AddCard");
}

TEST_F(AddCard, CancelLeadsBackToWhereTheFormWasOpenedFrom) {
  const std::vector<std::pair<Entry, std::string>> rows{
      {Entry::checkout, "Product"}, {Entry::wallet, "WalletManagement"}, {Entry::preRegister, ""}};
  for (const auto& [entry, screen] : rows) {
    Flow& fresh = anew();
    fresh.beginAddCard(entry);
    fresh.host.tap("cancelButton");
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.screen(), screen);
    EXPECT_EQ(fresh.application->calls, screen.empty() ? Calls{"cancelled"} : Calls{});
  }
}

TEST_F(AddCard, LinksNothingForAUserWhoHasLeftMeanwhile) {
  begin(Answers::kNothingNeeded);
  flow.answer("/card/bin/", Answers::kNothingNeeded, seconds(5));
  flow.proceedWithCard();
  flow.host.runFor(seconds(1));
  flow.host.tap("cancelButton");
  flow.host.runFor(seconds(10));
  EXPECT_EQ(flow.requestsTo("/card/link/"), 0U);
  EXPECT_EQ(flow.screen(), "WalletManagement");
  EXPECT_FALSE(flow.indicatorIsUp());
}

TEST_F(AddCard, TakesACardOverThatWasLinkedWhileTheUserLeft) {
  begin(Answers::kNothingNeeded);
  flow.answer("/card/link/", Answers::kLinked, seconds(5));
  flow.proceedWithCard();
  flow.host.runFor(seconds(1));
  flow.host.tap("cancelButton");
  flow.setCards({cardJson(11, "0011")});
  flow.host.runFor(seconds(10));
  EXPECT_EQ(flow.lastUsedCard(), 11);
  EXPECT_EQ(flow.screen(), "WalletManagement");
  EXPECT_EQ(flow.shown("cardHintView"), "xxx-0011");
}

TEST_F(AddCard, AsksAUserWhoHasLeftForNothing) {
  begin(Answers::kNothingNeeded);
  flow.answer("/card/link/", Answers::kRelink, seconds(5));
  flow.proceedWithCard();
  flow.host.runFor(seconds(1));
  flow.host.tap("cancelButton");
  flow.host.runFor(seconds(10));
  EXPECT_EQ(flow.screen(), "WalletManagement");
  EXPECT_FALSE(flow.indicatorIsUp());
}

TEST_F(AddCard, ASecondProceedIsASecondLookup) {
  begin(Answers::kNothingNeeded, Entry::preRegister);
  flow.answer("/card/bin/", Answers::kNothingNeeded, seconds(2));
  flow.answer("/card/link/", Answers::kLinked, seconds(2));
  flow.proceedWithCard();
  flow.host.runFor(seconds(1));
  flow.host.tap("proceedButton");
  flow.host.runFor(seconds(20));
  EXPECT_EQ(flow.requestsTo("/card/bin/"), 2U);
  EXPECT_EQ(flow.requestsTo("/card/link/"), 2U);
  EXPECT_EQ(flow.application->calls, Calls{"registered"});
  EXPECT_FALSE(flow.indicatorIsUp());
}

}  // namespace
}  // namespace orlix
