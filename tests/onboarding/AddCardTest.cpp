// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/widgets/DropDownPicker.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// On the form for a card, of a BIN that asks for this.
struct Form : Phone {
  explicit Form(const std::string& binInfo = answers::kNothingNeeded, Entry entry = Entry::wallet) {
    wallet.always("/card/bin/", binInfo);
    beginAddCard(entry);
  }
  void proceed() {
    proceedWithCard();
    host.runUntilIdle();
  }
  std::string linked(const std::string& key) const { return wallet.sent("/card/link/", key); }
};

}  // namespace

TEST(AddCard, ChecksNumberAndNameBeforeItAsksTheServer) {
  struct Case {
    std::string name, number, holder, alert;
  };
  const std::string badNumber = "Warning: Invalid card number";
  const std::string badHolder = "Warning: Invalid card holder name";
  const std::string asked = "Warning: This bank card is not supported";
  Form form(R"({"cardSupported":false})");
  for (const Case& row : std::vector<Case>{
           {"nothing", "", "", badNumber},
           {"13 digits", "4000123412341", "A N Other", badNumber},
           {"13 digits and their blanks", "4000 1234 1234 1", "A N Other", badNumber},
           {"14 letters", "abcdefghijklmn", "A N Other", asked},
           {"19 digits", "4000123412341234567", "A N Other", asked},
           {"a name of two letters", "4000123412341234", "AN", badHolder},
           {"a name of two characters of two bytes", "4000123412341234", "ÉÉ", badHolder},
           {"a name of three letters", "4000123412341234", "ANO", asked},
       }) {
    SCOPED_TRACE(row.name);
    form.host.connections().forgetRequests();
    form.host.user().replaceAll("cardNumberField", "");
    form.host.user().replaceAll("cardHolderField", "");
    form.host.type("cardNumberField", row.number);
    form.host.type("cardHolderField", row.holder);
    form.tap("proceedButton");
    EXPECT_EQ(form.alert(), row.alert);
    EXPECT_EQ(form.wallet.asked("/card/bin/"), row.alert == asked ? 1U : 0U);
    form.press("Ok");
  }
}

TEST(AddCard, AsksForWhatTheIssuerNeedsAndSendsNothingElse) {
  struct Case {
    std::string name, binInfo, expiry, birth, alert;
    std::vector<std::string> sent;  ///< month, year, date of birth, holder
  };
  const std::string exp = R"(,"needExp":true)";
  const std::string dob = R"(,"needDob":true)";
  const std::string badExpiry = "Warning: Invalid expiry date";
  const std::string badBirth = "Warning: Enter a valid date of birth DD/MM/YYYY";
  for (const Case& row : std::vector<Case>{
           {"nothing needed", "", "13/01", "1", "", {"", "", "", ""}},
           {"expiry", exp, "0340", "", "", {"03", "40", "", ""}},
           {"month 0", exp, "0040", "", "", {"00", "40", "", ""}},
           {"month 13", exp, "1340", "", badExpiry, {}},
           {"expired", exp, "0224", "", badExpiry, {}},
           {"this month", exp, "0324", "", "", {"03", "24", "", ""}},
           {"no expiry", exp, "", "", badExpiry, {}},
           {"birth", dob, "", "31121999", "", {"", "", "19991231", ""}},
           {"no such birth", dob, "", "99999999", "", {"", "", "99999999", ""}},
           {"short birth", dob, "", "3112199", badBirth, {}},
           {"holder", R"(,"needCardHolderName":true)", "", "", "", {"", "", "", "A N Other"}},
           {"expiry is judged before birth", exp + dob, "13", "3", badExpiry, {}},
       }) {
    SCOPED_TRACE(row.name);
    Form form(R"({"cardSupported":true)" + row.binInfo + "}");
    form.host.type("expiryDateField", row.expiry);
    form.host.type("dateOfBirthField", row.birth);
    form.proceed();
    EXPECT_EQ(form.alert(), row.alert);
    EXPECT_EQ(form.wallet.sent("/card/bin/", "bin"), "400012341");
    if (!row.alert.empty()) {
      EXPECT_EQ(form.wallet.asked("/card/link/"), 0U);
      EXPECT_FALSE(form.busy());
      continue;
    }
    EXPECT_EQ(form.linked("cardNumber"), "4000123412341234");
    EXPECT_EQ((std::vector{form.linked("expiryMonth"), form.linked("expiryYear"),
                           form.linked("dateOfBirth"), form.linked("cardHolderName")}),
              row.sent);
    EXPECT_EQ(form.linked("account") + form.linked("linkedMsisdn"), "");
  }
}

TEST(AddCard, RevealsTheAccountFirstWithoutAWord) {
  Form form(R"({"cardSupported":true,"needAccount":true})");
  EXPECT_TRUE(form.hidden("cardAccountField"));
  form.proceed();
  EXPECT_EQ(form.alert(), "");
  EXPECT_FALSE(form.busy());
  EXPECT_FALSE(form.hidden("cardAccountField"));
  form.proceed();
  EXPECT_EQ(form.alert(), "Warning: Please select an account.");
  form.press("Ok");
  form.host.type("cardAccountField", "my own");
  EXPECT_EQ(form.shown("cardAccountField"), "") << "it is picked, not typed";
  const auto picker = DropDownPicker::of(*form.host.user().outlet<TextField>("cardAccountField"));
  EXPECT_EQ(picker->entries(), (std::vector<std::string>{"Savings", "Current", "Credit"}));
  picker->pick("Current");
  EXPECT_EQ(form.wallet.asked("/card/link/"), 0U);
  form.proceed();
  EXPECT_EQ(form.wallet.asked("/card/bin/"), 3U);
  EXPECT_EQ(form.linked("account"), "Current");
}

TEST(AddCard, TakesTheFirstCardOfTheAnswerAndTheConfirmationTheLast) {
  Form form(answers::kNothingNeeded, Entry::checkout);
  LocationFix fix;
  fix.latitude = -26.5;
  fix.longitude = 28.25;
  form.host.locationManager().sendFixes({fix});
  form.wallet.cards = {cardJson(11, "0011"), cardJson(12, "0012")};
  form.wallet.next("/card/link/", ok(answers::kRelink));
  form.proceed();
  EXPECT_EQ(form.linked("locationInfo"), "[G:-26.5,28.25]");
  form.host.type("msisdnField", " 082 123");
  form.tap("proceedButton");
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 12);
  EXPECT_EQ(form.linked("linkedMsisdn"), " 082 123") << "as it was typed";
  EXPECT_EQ(form.linked("cardNumber"), "4000123412341234");
  OXSession::currentSession()->showAddCardScreen();
  form.proceed();
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 11);
  form.wallet.always("/card/link/", R"({"status":"SUCCESS"})");
  OXSession::currentSession()->showAddCardScreen();
  form.proceed();
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 0) << "an answer without a list";
}

TEST(AddCard, ShowsNoProgressWhileTheCheckoutBeginsAgain) {
  Form form(answers::kNothingNeeded, Entry::checkout);
  form.wallet.always("/card/link/", answers::kLinked);
  form.proceedWithCard();
  const std::size_t before = form.wallet.asked("/lookup/");
  form.host.runUntil([&] { return form.wallet.asked("/lookup/") > before; });
  EXPECT_FALSE(form.busy());
}

TEST(AddCard, SaysWhatTheServerAnsweredToTheFormAndToTheConfirmation) {
  struct Case {
    std::string answer, ofTheForm, ofTheConfirmation;
  };
  const std::string problem = "Warning: There seems to be some problem adding this card";
  const std::string wrong = "Warning: It seems this mobile number is incorrect";
  for (const Case& row : std::vector<Case>{
           {answers::kFailed, problem, wrong}, {"{}", "", ""}, {answers::kRelink, "", problem}}) {
    SCOPED_TRACE(row.answer);
    Form form;
    form.wallet.always("/card/link/", row.answer);
    form.proceed();
    EXPECT_EQ(form.alert(), row.ofTheForm);
    // An answer that says none of the three leaves the form's indicator up.
    EXPECT_EQ(form.busy(), row.answer == "{}");
    const auto session = OXSession::currentSession();
    session->cardInfoResponse = std::make_shared<CardInfoResponse>();
    session->cardInfoResponse->cardNumber = SecretString("4000123412341234");
    session->showMsisdnRelinkScreen();
    form.tap("proceedButton");
    EXPECT_EQ(form.alert(), row.ofTheConfirmation);
    EXPECT_FALSE(form.busy());
    form.host.topController()->isAlert() ? form.press("Ok") : form.tap("backButton");
    EXPECT_EQ(form.screen(), row.answer == "{}" ? "AddCard" : "MsisdnRelink");
  }
}

}  // namespace orlix::test
