// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXPresentationController.h"
#include "orlixkit/checkout/OXProductViewController.h"
#include "orlixkit/checkout/OXUtil.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kOpenAmount = R"({"code":"C-1","merchantName":"Shop","amountString":""})";
const Heard kPaid{"succeeded 9007199254740993"};

void setText(Phone& phone, const std::string& field, const std::string& text) {
  phone.host.user().outlet<TextField>(field)->setText(text);
}

}  // namespace

TEST(Payment, RunsFromTheHostsCallToItsOneCallbackAndLeavesNothing) {
  Phone phone;
  phone.showPaymentScreen();
  const std::vector<std::pair<std::string, std::string>> texts{
      {"merchantView", "Corner Shop"}, {"amountView", "R 25.00"},    {"currencyLabel", "R"},
      {"cardHintView", "xxx-4242"},    {"cardImageView", "visa100"}, {"proceedButton", "PAY"}};
  for (const auto& [outlet, text] : texts) {
    EXPECT_EQ(phone.shown(outlet), text) << outlet;
  }
  EXPECT_TRUE(phone.hidden("inputAmountField"));
  EXPECT_FALSE(phone.hidden("testWarningLabel"));
  EXPECT_TRUE(phone.host.locationManager().updating());
  phone.host.locationManager().sendFixes({{-33.5, 18.25, 5, {}}});
  const std::weak_ptr<ViewController> screen = phone.host.topController();
  const std::weak_ptr<OXSession> session = OXSession::currentSession();

  phone.pay();
  EXPECT_EQ(phone.indicator().status(), "Making Payment...");
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, kPaid);
  EXPECT_EQ(phone.host.root()->presentedViewController(), nullptr);
  EXPECT_FALSE(phone.busy());
  EXPECT_FALSE(phone.host.locationManager().updating());
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 5);
  const std::vector<std::pair<std::string, std::string>> keys{
      {"amount", "25.00"},   {"code", "C-1"},   {"cardId", "5"},
      {"extraRefValue", ""}, {"cvv", "(none)"}, {"locationInfo", "[G:-33.5,18.25]"}};
  for (const auto& [key, value] : keys) {
    EXPECT_EQ(phone.wallet.sent("/purchase/", key), value) << key;
  }
  EXPECT_THAT(phone.wallet.lastBody("/purchase/"), HasSubstr("pinBlock"));
  phone.host.runUntilIdle();
  EXPECT_TRUE(screen.expired());
  EXPECT_FALSE(session.expired());
  OXSession::reset();
  EXPECT_TRUE(session.expired());
}

TEST(Payment, AFieldThatIsNotFilledInIsAskedForBeforeAnythingIsSent) {
  struct Case {
    std::string name, codeInfo, card, amount, cvv, pin, expected;
  };
  const std::string fixed = R"({"code":"C-1","amountString":"R 25.00","amount":"25.00"})";
  const std::string pin = R"(,"method":"AMT")";
  const std::string both = R"(,"method":"AMT","needCvv":true)";
  const std::string noAmount = "Warning: Enter a valid amount";
  const std::string noCvv = "Warning: Enter a valid CVV";
  const std::vector<Case> cases{
      {"no amount", kOpenAmount, pin, "", "", "1234", noAmount},
      {"amount 0.00", kOpenAmount, pin, "0.00", "", "1234", noAmount},
      {"amount 0", kOpenAmount, pin, "0", "", "1234", noAmount},
      {"amount 0.0 is let through", kOpenAmount, pin, "0.0", "", "1234", ""},
      {"a fixed amount is not looked at", fixed, pin, "", "", "1234", ""},
      {"the amount comes before the CVV", kOpenAmount, both, "", "1", "1", noAmount},
      {"CVV of 2", fixed, both, "", "12", "1234", noCvv},
      {"CVV of 5", fixed, both, "", "12345", "1234", noCvv},
      {"CVV of 3", fixed, both, "", "123", "1234", ""},
      {"CVV of 4", fixed, both, "", "1234", "1234", ""},
      {"the CVV comes before the PIN", fixed, both, "", "", "", noCvv},
      {"PIN of 3", fixed, pin, "", "", "123", "Warning: Enter ATM PIN"},
      {"PIN of 12", fixed, pin, "", "", "123456789012", ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.codeInfo = row.codeInfo;
    phone.wallet.cards = {cardJson(5, "4242", row.card)};
    phone.showPaymentScreen();
    setText(phone, "inputAmountField", row.amount);
    setText(phone, "cvvField", row.cvv);
    setText(phone, "pinField", row.pin);
    phone.host.tap("proceedButton");
    EXPECT_EQ(phone.alert(), row.expected);
    phone.host.runFor(1s);
    EXPECT_EQ(phone.wallet.asked("/purchase/"), row.expected.empty() ? 1U : 0U);
  }
}

TEST(Payment, EveryAnswerEndsAsTheTableSays) {
  struct Case {
    std::string name;
    ServerReply purchase;
    std::string receipt;
    Heard outcome;  ///< empty: the network alert
  };
  const ServerReply paid = ok(R"({"status":"SUCCESS","transactionId":77})");
  const std::vector<Case> cases{
      {"paid", paid, R"({"status":"SUCCESS"})", {"succeeded 77"}},
      {"success in lower case",
       ok(R"({"status":"success","transactionId":-3})"),
       R"({"status":"SUCCESS"})",
       {"succeeded -3"}},
      {"declined", ok(R"({"status":"ERROR","errorMessage":"no"})"), "", {"error 2"}},
      {"wrong PIN", ok(R"({"status":"INVALID_PASSWORD"})"), "", {"error 2"}},
      {"a status nobody knows", ok(R"({"status":"LATER"})"), "", {"error 2"}},
      {"no status", ok("{}"), "", {"error 2"}},
      {"the server fails", ServerReply::of(500), "", {}},
      {"no answer at all", ServerReply().silence(), "", {}},
      {"no JSON", ok("<html>"), "", {}},
      {"receipt refused", paid, R"({"status":"FAILED"})", {"failed 77"}},
      {"receipt in lower case", paid, R"({"status":"success"})", {"failed 77"}},
      {"receipt status null", paid, R"({"status":null})", {"failed 77"}},
      {"receipt no JSON", paid, "oops", {}},
      {"receipt never comes", paid, "{}", {}},
      {"receipt always empty", paid, "", {}},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.next("/purchase/", row.purchase);
    phone.wallet.receipt = row.receipt;
    phone.showPaymentScreen();
    phone.pay();
    phone.host.runFor(200s);
    EXPECT_EQ(phone.app->heard, row.outcome);
    EXPECT_EQ(phone.alert(), row.outcome.empty() ? kConnectionProblem : "");
    EXPECT_FALSE(phone.busy());
    EXPECT_EQ(phone.wallet.asked("/purchase/"), 1U);
  }
}

TEST(Payment, RetrySendsThePinAsThenTyped) {
  Phone phone;
  phone.wallet.next("/purchase/", unreachable());
  phone.showPaymentScreen();
  const auto field = phone.host.user().outlet<TextField>("pinField");
  phone.pay("1234");
  phone.host.runUntilAlert("Connection problem");
  const std::string first = phone.wallet.lastBody("/purchase/");
  field->setText("9876");
  phone.press("Retry");
  EXPECT_EQ(phone.app->heard, kPaid);
  EXPECT_NE(phone.wallet.lastBody("/purchase/"), first);
}

TEST(Payment, TheAmountFieldBeginsWithTheFirstTextThatIsThere) {
  struct Case {
    std::string name;
    std::optional<std::string> temporary;
    double host;
    std::string ofCode, expected, afterOneKey;
  };
  const std::vector<Case> cases{
      {"nothing", {}, 0, "", "0.00", "0.05"},
      {"the code's", {}, 0, "7.5", "7.5", "75.05"},
      {"the host's as it is", {}, 12.5, "7.5", "12.5", "125.05"},
      {"the one typed before", "3.00", 12.5, "7.5", "3.00", "30.05"},
      {"an empty one typed before", "", 12.5, "7.5", "0.00", "0.05"},
      {"with a comma", "1,50", 0, "", "1,50", "10.05"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.codeInfo = R"({"code":"C-1","amountString":"")" +
                            (row.ofCode.empty() ? "" : R"(,"amount":")" + row.ofCode + '"') + "}";
    phone.checkout(row.host);
    OXSession::currentSession()->tempAmountInput = row.temporary;
    phone.host.runUntilScreen("Product");
    EXPECT_TRUE(phone.hidden("amountView"));
    EXPECT_EQ(phone.shown("inputAmountField"), row.expected);
    phone.host.type("inputAmountField", "5");
    EXPECT_EQ(phone.shown("inputAmountField"), row.afterOneKey);
  }
}

TEST(Payment, OnlyTheAmountFieldWithTheNumberPadTakesDigitsFromTheRight) {
  Phone phone;
  phone.wallet.codeInfo = kOpenAmount;
  phone.showPaymentScreen();
  auto& screen = dynamic_cast<OXProductViewController&>(*phone.host.topController());
  const auto amount = phone.host.user().outlet<TextField>("inputAmountField");
  struct Case {
    std::string field;
    Keyboard keyboard;
    bool allowed;
  };
  for (const Case& row : {Case{"cvvField", Keyboard::numberPad, true},
                          Case{"inputAmountField", Keyboard::standard, true},
                          Case{"inputAmountField", Keyboard::numberPad, false}}) {
    const auto field = phone.host.user().outlet<TextField>(row.field);
    field->setKeyboard(row.keyboard);
    const std::string before = field->text();
    EXPECT_EQ(screen.textFieldShouldChangeCharacters(*field, {}, "5"), row.allowed) << row.field;
    EXPECT_EQ(field->text() == before, row.allowed) << row.field;
  }
}

TEST(Payment, TheSegueToTheCardFormShowsItAsACard) {
  for (const bool isToForm : {true, false}) {
    Phone phone;
    phone.showPaymentScreen();
    phone.host.topController()->performSegue(isToForm ? "AddCard" : "Cards");
    phone.host.runUntilScreen(isToForm ? "AddCard" : "Cards");
    EXPECT_EQ(std::dynamic_pointer_cast<OXPresentationController>(
                  phone.host.topController()->presentationController()) != nullptr,
              isToForm);
  }
}

TEST(Payment, ThePinIsInNoLogNoBodyAndNoStore) {
  const std::string pin = "860427";
  Phone phone;
  phone.wallet.cards = {cardJson(5, "4242", R"(,"method":"AMT","needCvv":true)")};
  phone.wallet.next("/purchase/", unreachable());
  phone.wallet.next("/purchase/", ServerReply::of(403));
  phone.showPaymentScreen();
  phone.host.type("cvvField", "937");
  phone.pay(pin);
  EXPECT_EQ(phone.shown("pinField").find('8'), std::string::npos);
  phone.host.runUntilAlert("Connection problem");
  phone.press("Retry");
  EXPECT_EQ(phone.app->heard, kPaid);
  EXPECT_EQ(phone.wallet.asked("/purchase/"), 3U);
  for (const RecordedRequest& request : phone.host.requests()) {
    std::string all = request.url + request.body.value_or("");
    for (const auto& [name, value] : request.headers) {
      all += name + value;
    }
    EXPECT_EQ(all.find(pin), std::string::npos) << request.url;
  }
  for (const std::string& secret : {pin, std::string("937")}) {
    EXPECT_FALSE(phone.host.log().contains(secret));
    EXPECT_FALSE(phone.host.userDefaults()->holds(secret));
  }
}

}  // namespace orlix::test
