// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXActivationCodeViewController.h"
#include "orlixkit/onboarding/OXActivationViewController.h"
#include "orlixkit/ui/TableView.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

TEST(Activation, MarksTheCurrentCountryInTheListAndShowsItEmptyWhenItIsMissing) {
  Phone phone;
  phone.beginActivation(Entry::checkout, "+27821234567");
  for (const bool missing : {false, true}) {
    if (missing) {
      phone.host.bundle().remove("CountryCellCodes", "plist");
    }
    EXPECT_FALSE(phone.host.user().outlet<TextField>("countryCodeField")->beginEditing());
    phone.host.runUntilScreen("CountryCode");
    const auto table = phone.host.user().outlet<TableView>("tableView");
    std::string marked;
    for (std::size_t row = 0; row < table->rowCount(); ++row) {
      marked += table->cell(row).checkmark ? table->cell(row).text : "";
    }
    EXPECT_EQ(marked, missing ? "" : "South Africa (27)");
    phone.tap("cancelAction");
    EXPECT_EQ(phone.screen(), "Activation");
  }
}

TEST(Activation, TakesTheCountryThatIsChosenWhileItIsThere) {
  Phone phone;
  phone.beginActivation(Entry::checkout, "");
  phone.host.user().outlet<TextField>("countryCodeField")->beginEditing();
  phone.host.runUntilScreen("CountryCode");
  const auto list = phone.host.topController();  // held
  const auto table = phone.host.user().outlet<TableView>("tableView");
  table->select(0);
  phone.host.runUntilScreen("Activation");
  EXPECT_EQ(table->cell(0).text, "Canada (" + phone.shown("countryCodeField") + ")");
  phone.tap("cancelAction");
  table->select(1);
  EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
  EXPECT_EQ(phone.screen(), "");
}

TEST(Activation, ASecondScreenThatComesWhenTheFlowIsOverShowsNoNumber) {
  Phone phone;
  phone.beginEnrolment(Entry::checkout);
  const auto screen = phone.host.application().storyboard().make("ActivationCode");
  phone.tap("cancelAction");
  screen->loadViewIfNeeded();
  EXPECT_EQ(screen->outletNamed("infoLabel")->shownText(), "A text message has been sent to ");
}

TEST(Activation, SendsNumbersOfSevenToFifteenDigitsOnly) {
  struct Case {
    std::string typed, alert, sent;
  };
  const std::string tooShort = "Warning: Invalid msisdn number, too short.";
  const std::string tooLong = "Warning: Invalid msisdn number, too long.";
  for (const Case& row : std::vector<Case>{{"", "", "(none)"},
                                           {"0", tooShort, "(none)"},
                                           {"0000000", tooShort, "(none)"},
                                           {"01234", tooShort, "(none)"},
                                           {"012345", "", "2712345"},
                                           {"01234567890123", "", "271234567890123"},
                                           {"012345678901234", tooLong, "(none)"},
                                           {std::string(40, '8'), tooLong, "(none)"},
                                           {"o82 is 0821234567", "", "27820821234567"},
                                           {"０８２１２３４５６７", "", "27821234567"}}) {
    SCOPED_TRACE(row.typed);
    Phone phone;
    phone.beginActivation(Entry::checkout, "");
    phone.host.type("msisdnField", row.typed);
    phone.tap("proceedButton");
    EXPECT_EQ(phone.alert(), row.alert);
    EXPECT_EQ(phone.wallet.sent("/sms/send", "msisdn"), row.sent);
    if (row.sent != "(none)") {
      EXPECT_EQ(phone.screen(), "ActivationCode");
      EXPECT_EQ(phone.shown("infoLabel"), "A text message has been sent to " + row.sent);
    }
  }
}

TEST(Activation, SaysThatTheServerRefusedTheNumberOrThatThereIsNone) {
  Phone phone;
  OXActivationViewController screen;
  screen.loadViewIfNeeded();
  std::dynamic_pointer_cast<TextField>(screen.outletNamed("msisdnField"))->setText("0821234567");
  screen.sendMsisdn();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), "Warning: Invalid mobile number.");
  phone.press("Ok");
  phone.beginActivation(Entry::checkout, "0821234567");
  phone.wallet.always("/sms/send", answers::kFailed);
  phone.tap("proceedButton");
  EXPECT_EQ(phone.alert(), "Warning: Could not send msisdn.");
  EXPECT_FALSE(phone.busy());
}

TEST(Activation, SendsTheCodeAsTypedAndAsksTwiceBeforeItBothersTheUser) {
  for (const std::string code : {" 12 34 ", ""}) {
    Phone phone;
    phone.beginEnrolment(Entry::checkout);
    phone.wallet.next("/sms/activateSession", unreachable());
    phone.host.type("codeField", code);
    phone.tap("proceedButton");
    EXPECT_EQ(phone.screen(), "Product");
    EXPECT_EQ(phone.wallet.asked("/sms/activateSession"), 2U);
    EXPECT_EQ(phone.wallet.sent("/sms/activateSession", "activationCode"), code);
    EXPECT_EQ(phone.host.log().count("--- ERROR, TRY AGAIN ---"), 1U);
    phone.begin(Entry::checkout);
    phone.host.runUntilIdle();
    EXPECT_EQ(phone.wallet.sent("/session/new", "ssToken"), "token");
  }
}

TEST(Activation, TakesBothRoadsAfterASuccess) {
  Phone phone;
  phone.wallet.always("/lookup/", late(3s, R"({"codeInfo":{"code":"C","merchantName":"Baker"}})"));
  phone.beginEnrolment(Entry::checkout);
  phone.host.tap("proceedButton");
  phone.host.runUntilScreen("Product");
  phone.host.runFor(1s);
  const auto early = phone.host.topController();
  EXPECT_EQ(phone.shown("merchantView"), "") << "still without the code's information";
  phone.host.tap("proceedButton");
  EXPECT_EQ(phone.alert(), "Warning: Enter a valid amount") << "nothing can be paid yet";
  phone.host.runFor(3s);
  EXPECT_EQ(phone.screen(), "Product");
  EXPECT_NE(phone.host.topController(), early);
  EXPECT_EQ(phone.shown("merchantView"), "Baker");
  EXPECT_EQ(phone.host.root()->presentedViewController(), phone.host.topController())
      << "the enrolment's screens are gone";
  EXPECT_TRUE(phone.app->heard.empty());
}

TEST(Activation, TakesOnlyOneAndThreeForARefusal) {
  const std::vector<std::pair<std::int32_t, std::string>> rows{
      {0, ""}, {1, "Warning: Invalid activation code."},
      {2, ""}, {3, "Warning: Could not activate."},
      {4, ""}, {-1, ""}};
  for (const auto& [status, alert] : rows) {
    SCOPED_TRACE(status);
    Phone phone;
    phone.beginEnrolment(Entry::checkout);
    const auto screen =
        std::dynamic_pointer_cast<OXActivationCodeViewController>(phone.host.topController());
    screen->answered(status);
    phone.host.runUntilIdle();
    EXPECT_EQ(phone.alert(), alert);
    EXPECT_EQ(phone.wallet.asked("/lookup/"), alert.empty() ? 1U : 0U);
    if (!alert.empty()) {
      phone.press("Ok");
      EXPECT_EQ(phone.screen(), "ActivationCode");
    }
  }
}

}  // namespace orlix::test
