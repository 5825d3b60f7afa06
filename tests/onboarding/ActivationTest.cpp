#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/onboarding/OMCountryCodeViewController.h"
#include "orlixkit/onboarding/OXActivationCodeViewController.h"
#include "orlixkit/onboarding/OXActivationViewController.h"
#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

using std::chrono::seconds;

class Activation : public FlowTest {
 protected:
  void begin(const std::string& preMSISDN = "", Entry entry = Entry::checkout) {
    flow.answer("/session/new", Answers::kNotActivated);
    flow.begin(entry, "Activation", preMSISDN);
  }

  void touchCountryCode() {
    EXPECT_FALSE(flow.host.user().outlet<TextField>("countryCodeField")->beginEditing());
  }
};

TEST_F(Activation, SuggestsTheHostsNumberAndItsCountryCode) {
  struct Row {
    std::string name;
    std::string preMSISDN;
    std::string number;
    std::string code;
  };
  const std::vector<Row> rows{
      {"none", "", "", "27"},
      {"national", "0821234567", "+27821234567", "27"},
      {"full-width digits", "０８２ １２３ ４５６７", "+27821234567", "27"},
      {"British", "+44 7700 900123", "+447700900123", "44"},
      {"Trinidad and Tobago", "+18681234567", "+18681234567", "1868"},
      {"American", "+12025550123", "+12025550123", "1"},
      {"an unknown code", "+9991234567", "+9991234567", "27"},
  };
  for (const Row& row : rows) {
    Flow& fresh = anew();
    fresh.answer("/session/new", Answers::kNotActivated);
    fresh.begin(Entry::checkout, "Activation", row.preMSISDN);
    EXPECT_EQ(fresh.shown("msisdnField"), row.number) << row.name;
    EXPECT_EQ(fresh.shown("countryCodeField"), row.code) << row.name;
  }
}

TEST_F(Activation, LeavesTheCodeAloneForANumberWithoutPlus) {
  begin();
  OXSession::currentSession()->preMSISDN = "447700900123";
  OXActivationViewController screen;
  screen.loadViewIfNeeded();
  const auto code = std::dynamic_pointer_cast<TextField>(screen.outletNamed("countryCodeField"));
  EXPECT_EQ(code->text(), "27");
}

TEST_F(Activation, PicksACountryFromTheListAndMarksTheCurrentOne) {
  begin("+27821234567");
  touchCountryCode();
  flow.host.runUntilScreen("CountryCode");
  const auto table = flow.host.user().outlet<TableView>("tableView");
  std::vector<std::string> marked;
  std::size_t trinidad = 0;
  for (std::size_t row = 0; row < table->rowCount(); ++row) {
    if (table->cell(row).checkmark) {
      marked.push_back(table->cell(row).text);
    }
    if (table->cell(row).text == "Trinidad and Tobago (1868)") {
      trinidad = row;
    }
  }
  EXPECT_EQ(marked, std::vector<std::string>{"South Africa (27)"});
  flow.host.user().chooseRow("tableView", trinidad);
  flow.host.runUntilScreen("Activation");
  EXPECT_EQ(flow.shown("countryCodeField"), "1868");

  touchCountryCode();
  flow.host.runUntilScreen("CountryCode");
  flow.host.tap("cancelAction");
  flow.host.runUntilScreen("Activation");
  EXPECT_EQ(flow.shown("countryCodeField"), "1868");
}

TEST_F(Activation, ShowsThePickerEmptyWhenTheListIsMissing) {
  flow.host.bundle().remove("CountryCellCodes", "plist");
  begin("+447700900123");
  EXPECT_EQ(flow.shown("countryCodeField"), "27");
  touchCountryCode();
  flow.host.runUntilScreen("CountryCode");
  EXPECT_EQ(flow.host.user().outlet<TableView>("tableView")->rowCount(), 0U);
}

TEST_F(Activation, SendsNumbersOfSevenToFifteenDigitsOnly) {
  struct Row {
    std::string typed;
    std::string alert;
    std::string sent;
  };
  const std::vector<Row> rows{
      {"", "", ""},
      {"0", "Warning: Invalid msisdn number, too short.", ""},
      {"0000000", "Warning: Invalid msisdn number, too short.", ""},
      {"01234", "Warning: Invalid msisdn number, too short.", ""},
      {"012345", "", "2712345"},
      {"01234567890123", "", "271234567890123"},
      {"012345678901234", "Warning: Invalid msisdn number, too long.", ""},
      {std::string(40, '8'), "Warning: Invalid msisdn number, too long.", ""},
      {"o82 is 0821234567", "", "27820821234567"},
      {"０８２１２３４５６７", "", "27821234567"},
  };
  for (const Row& row : rows) {
    Flow& fresh = anew();
    fresh.answer("/session/new", Answers::kNotActivated);
    fresh.begin(Entry::checkout, "Activation", "");
    fresh.host.type("msisdnField", row.typed);
    fresh.host.tap("proceedButton");
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.alert(), row.alert) << row.typed;
    EXPECT_EQ(fresh.requestsTo("/sms/send"), row.sent.empty() ? 0U : 1U) << row.typed;
    if (!row.sent.empty()) {
      EXPECT_EQ(fresh.sent("/sms/send", "msisdn"), row.sent) << row.typed;
      EXPECT_EQ(fresh.screen(), "ActivationCode") << row.typed;
      EXPECT_EQ(fresh.shown("infoLabel"), "A text message has been sent to " + row.sent);
      EXPECT_TRUE(fresh.host.log().contains(row.sent)) << row.typed;
    }
  }
}

TEST_F(Activation, HoldsTouchesBackWhileTheNumberIsBeingSent) {
  begin("0821234567");
  flow.answer("/sms/send", Answers::kSmsSent, seconds(5));
  flow.host.tap("proceedButton");
  flow.host.runFor(seconds(1));
  EXPECT_TRUE(Host::current().application().progressIndicator().blocksInput());
  EXPECT_EQ(Host::current().application().progressIndicator().status(), "Please wait...");
  // Who gets past the indicator (a script) sends twice, and still sees one screen.
  flow.host.topController()->performAction("proceedAction");
  flow.host.runFor(seconds(10));
  EXPECT_EQ(flow.requestsTo("/sms/send"), 2U);
  EXPECT_EQ(flow.screen(), "ActivationCode");
  EXPECT_TRUE(flow.host.log().contains("Attempt to present ActivationCode"));
  EXPECT_FALSE(flow.indicatorIsUp());
}

TEST_F(Activation, SaysThatTheServerRefusedTheNumber) {
  begin("0821234567");
  flow.answer("/sms/send", Answers::kFailed);
  flow.host.tap("proceedButton");
  flow.host.runUntilAlert("Warning");
  EXPECT_EQ(flow.alert(), "Warning: Could not send msisdn.");
  EXPECT_FALSE(flow.indicatorIsUp());
}

TEST_F(Activation, SaysSoWhenThereIsNobodyToSendTheNumberTo) {
  OXActivationViewController screen;
  screen.loadViewIfNeeded();
  std::dynamic_pointer_cast<TextField>(screen.outletNamed("msisdnField"))->setText("0821234567");
  screen.sendMsisdn();
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.alert(), "Warning: Invalid mobile number.");
}

TEST_F(Activation, AsksTwiceBeforeItBothersTheUser) {
  flow.beginEnrolment(Entry::checkout);
  flow.fail("/sms/activateSession", 1, Answers::kSmsSent);
  flow.host.type("codeField", " 12 34 ");
  flow.host.tap("proceedButton");
  flow.host.runUntilScreen("Product");
  EXPECT_EQ(flow.requestsTo("/sms/activateSession"), 2U);
  EXPECT_EQ(flow.sent("/sms/activateSession", "activationCode"), " 12 34 ") << "as it was typed";
  EXPECT_EQ(flow.host.log().count("--- ERROR, TRY AGAIN ---"), 1U);
}

TEST_F(Activation, SendsAnEmptyCodeToo) {
  flow.beginEnrolment(Entry::checkout);
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.sent("/sms/activateSession", "activationCode"), "");
}

TEST_F(Activation, TakesBothRoadsAfterASuccess) {
  flow.beginEnrolment(Entry::checkout);
  flow.answer("/lookup/query/v2/",
              R"({"codeInfo":{"code":"C","merchantName":"Baker","amountString":"25.00"}})",
              seconds(3));
  flow.host.tap("proceedButton");
  flow.host.runUntilScreen("Product");
  flow.host.runFor(seconds(1));
  const auto early = flow.host.topController();
  EXPECT_EQ(flow.shown("merchantView"), "") << "still without the code's information";
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.alert(), "Warning: Enter a valid amount") << "nothing can be paid yet";
  flow.host.runFor(seconds(3));
  EXPECT_EQ(flow.screen(), "Product");
  EXPECT_NE(flow.host.topController(), early);
  EXPECT_EQ(flow.shown("merchantView"), "Baker");
  EXPECT_EQ(flow.host.root()->presentedViewController(), flow.host.topController())
      << "the enrolment's screens are gone";
  EXPECT_EQ(flow.application->calls, Calls{});
}

TEST_F(Activation, KeepsTheNewTokenForTheNextStart) {
  flow.beginEnrolment(Entry::checkout);
  flow.host.tap("proceedButton");
  flow.host.runUntilIdle();
  flow.answer("/session/new", Answers::kSession);
  flow.begin(Entry::checkout);
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.sent("/session/new", "ssToken"), "token");
}

TEST_F(Activation, TakesOnlyOneAndThreeForARefusal) {
  const std::vector<std::pair<std::int32_t, std::string>> rows{
      {0, ""}, {1, "Warning: Invalid activation code."},
      {2, ""}, {3, "Warning: Could not activate."},
      {4, ""}, {-1, ""},
  };
  for (const auto& [status, alert] : rows) {
    Flow& fresh = anew();
    fresh.beginEnrolment(Entry::checkout);
    const auto screen =
        std::dynamic_pointer_cast<OXActivationCodeViewController>(fresh.host.topController());
    screen->answered(status);
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.alert(), alert) << status;
    EXPECT_EQ(fresh.requestsTo("/lookup/"), alert.empty() ? 1U : 0U) << status;
  }
}

TEST_F(Activation, StaysOnAWrongCode) {
  flow.beginEnrolment(Entry::checkout);
  flow.answer("/sms/activateSession", R"({"status":"WRONG"})");
  flow.host.tap("proceedButton");
  flow.host.runUntilAlert("Warning");
  EXPECT_EQ(flow.alert(), "Warning: Could not activate.");
  flow.host.pressAlert("Ok");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "ActivationCode");
  EXPECT_FALSE(flow.indicatorIsUp());
}

TEST_F(Activation, ClosesTheKeyboardOnDone) {
  begin();
  flow.host.type("msisdnField", "1");
  const auto field = flow.host.user().outlet<TextField>("msisdnField");
  EXPECT_EQ(field->toolbarButton(), "Done");
  EXPECT_TRUE(field->editing());
  flow.host.tap("DoneClicked");
  EXPECT_FALSE(field->editing());
  EXPECT_TRUE(flow.host.log().contains("Done Clicked."));
}

}  // namespace
}  // namespace orlix
