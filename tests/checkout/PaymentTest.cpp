#include <chrono>

#include <gmock/gmock.h>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

const std::string kOpenAmount = R"({"code":"C-1","merchantName":"Shop","amountString":""})";

std::string cardOf(const std::string& rest) {
  return R"([{"cardId":5,"cardHint":"4242","cardType":"visa",)" + rest + "}]";
}

}  // namespace

TEST(Payment, WithPinRunsFromTheHostsCallToItsOneCallback) {
  Phone phone;
  phone.showPaymentScreen();
  EXPECT_EQ(phone.shown("merchantView"), "Corner Shop");
  EXPECT_EQ(phone.shown("amountView"), "R 25.00");
  EXPECT_EQ(phone.shown("currencyLabel"), "R");
  EXPECT_EQ(phone.shown("cardHintView"), "xxx-4242");
  EXPECT_EQ(phone.shown("cardImageView"), "visa100");
  EXPECT_EQ(phone.shown("proceedButton"), "PAY");
  EXPECT_TRUE(phone.hidden("inputAmountField"));
  EXPECT_FALSE(phone.hidden("testWarningLabel"));

  phone.pay();
  EXPECT_EQ(phone.host.application().progressIndicator().status(), "Making Payment...");
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });

  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  EXPECT_EQ(phone.host.root()->presentedViewController(), nullptr);
  EXPECT_FALSE(phone.busy());
  const std::string body = phone.wallet.lastBody("/purchase/");
  EXPECT_THAT(body, HasSubstr(R"("amount" : "25.00")"));
  EXPECT_THAT(body, HasSubstr(R"("code" : "C-1")"));
  EXPECT_THAT(body, HasSubstr(R"("cardId" : 5)"));
  EXPECT_THAT(body, HasSubstr(R"("extraRefValue" : "")"));
  EXPECT_THAT(body, HasSubstr("pinBlock"));
  EXPECT_THAT(body, Not(HasSubstr("cvv")));
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 5);
}

TEST(Payment, WithoutPinSendsTheCvvAndNoPinBlock) {
  Phone phone;
  phone.wallet.cards = cardOf(R"("method":"CNP","needCvv":true)");
  phone.showPaymentScreen();
  EXPECT_TRUE(phone.hidden("pinField"));
  EXPECT_FALSE(phone.hidden("cvvField"));
  phone.host.type("cvvField", "123");
  phone.host.tap("proceedButton");
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  const std::string body = phone.wallet.lastBody("/purchase/");
  EXPECT_THAT(body, HasSubstr(R"("cvv" : "123")"));
  EXPECT_THAT(body, Not(HasSubstr("pinData")));
  EXPECT_THAT(body, Not(HasSubstr("extraRefValue")));
}

TEST(Payment, AWholeCheckoutWithTheReceiptsTimeOutTakesNoRealTime) {
  const auto begun = std::chrono::steady_clock::now();
  Phone phone;
  phone.wallet.receipt = "{}";
  phone.showPaymentScreen();
  phone.pay();
  phone.host.runUntilAlert("Connection problem");
  EXPECT_EQ(phone.wallet.asked("/receipt/poll/"), 30U);
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
}

TEST(Payment, ScreensAndTheSessionAreReleasedWhenTheFlowHasEnded) {
  Phone phone;
  phone.showPaymentScreen();
  const std::weak_ptr<ViewController> screen = phone.host.topController();
  const std::weak_ptr<OXSession> session = OXSession::currentSession();
  phone.pay();
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
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
  const std::string fixed = FakeWallet(Phone().host.connections()).codeInfo;
  const std::string pin = R"("method":"AMT")";
  const std::string pinAndCvv = R"("method":"AMT","needCvv":true)";
  const std::vector<Case> cases{
      {"no amount", kOpenAmount, pin, "", "", "1234", "Warning: Enter a valid amount"},
      {"amount 0.00", kOpenAmount, pin, "0.00", "", "1234", "Warning: Enter a valid amount"},
      {"amount 0", kOpenAmount, pin, "0", "", "1234", "Warning: Enter a valid amount"},
      {"amount 0.0 is let through", kOpenAmount, pin, "0.0", "", "1234", ""},
      {"a fixed amount is not looked at", fixed, pin, "", "", "1234", ""},
      {"the amount comes before the CVV", kOpenAmount, pinAndCvv, "", "1", "1",
       "Warning: Enter a valid amount"},
      {"CVV of 2", fixed, pinAndCvv, "", "12", "1234", "Warning: Enter a valid CVV"},
      {"CVV of 5", fixed, pinAndCvv, "", "12345", "1234", "Warning: Enter a valid CVV"},
      {"CVV of 3", fixed, pinAndCvv, "", "123", "1234", ""},
      {"CVV of 4", fixed, pinAndCvv, "", "1234", "1234", ""},
      {"the CVV comes before the PIN", fixed, pinAndCvv, "", "", "", "Warning: Enter a valid CVV"},
      {"PIN of 3", fixed, pin, "", "", "123", "Warning: Enter ATM PIN"},
      {"PIN of 12", fixed, pin, "", "", "123456789012", ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.codeInfo = row.codeInfo;
    phone.wallet.cards = cardOf(row.card);
    phone.showPaymentScreen();
    const auto screen = phone.host.topController();
    const auto set = [&](const std::string& field, const std::string& text) {
      std::dynamic_pointer_cast<TextField>(screen->outletNamed(field))->setText(text);
    };
    set("inputAmountField", row.amount);
    set("cvvField", row.cvv);
    set("pinField", row.pin);
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
    std::string outcome;  ///< empty: the network alert
  };
  const ServerReply paid = ServerReply::of(200, R"({"status":"SUCCESS","transactionId":77})");
  const std::vector<Case> cases{
      {"paid", paid, R"({"status":"SUCCESS"})", "succeeded 77"},
      {"success in lower case", ServerReply::of(200, R"({"status":"success","transactionId":-3})"),
       R"({"status":"SUCCESS"})", "succeeded -3"},
      {"declined", ServerReply::of(200, R"({"status":"ERROR","errorMessage":"no"})"), "",
       "error 2"},
      {"wrong PIN", ServerReply::of(200, R"({"status":"INVALID_PASSWORD"})"), "", "error 2"},
      {"a status nobody knows", ServerReply::of(200, R"({"status":"LATER"})"), "", "error 2"},
      {"no status", ServerReply::of(200, "{}"), "", "error 2"},
      {"the server fails", ServerReply::of(500), "", ""},
      {"no answer at all", ServerReply().silence(), "", ""},
      {"no JSON", ServerReply::of(200, "<html>"), "", ""},
      {"receipt refused", paid, R"({"status":"FAILED"})", "failed 77"},
      {"receipt in lower case", paid, R"({"status":"success"})", "failed 77"},
      {"receipt status null", paid, R"({"status":null})", "failed 77"},
      {"receipt no JSON", paid, "oops", ""},
      {"receipt never comes", paid, "{}", ""},
      {"receipt always empty", paid, "", ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.next("/purchase/", row.purchase);
    phone.wallet.receipt = row.receipt;
    phone.showPaymentScreen();
    phone.pay();
    phone.host.runFor(200s);
    EXPECT_EQ(phone.app->heard, row.outcome.empty() ? Heard{} : Heard{row.outcome});
    EXPECT_EQ(phone.alert(), row.outcome.empty() ? kConnectionProblem : "");
    EXPECT_FALSE(phone.busy());
    EXPECT_EQ(phone.wallet.asked("/purchase/"), 1U);
  }
}

TEST(Payment, RetrySendsTheSamePurchaseAgainWithThePinAsThenTyped) {
  Phone phone;
  phone.wallet.nextFails("/purchase/");
  phone.showPaymentScreen();
  phone.pay("1234");
  phone.host.runUntilAlert("Connection problem");
  const std::string first = phone.wallet.lastBody("/purchase/");
  std::dynamic_pointer_cast<TextField>(
      phone.host.root()->presentedViewController()->outletNamed("pinField"))
      ->setText("9876");
  phone.host.pressAlert("Retry");
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  const std::string second = phone.wallet.lastBody("/purchase/");
  EXPECT_NE(first, second);
  EXPECT_THAT(second, HasSubstr(R"("cardId" : 5)"));
  EXPECT_EQ(phone.wallet.asked("/purchase/"), 2U);
}

TEST(Payment, RetryAfterAMissingReceiptPollsAnewWithoutASecondPurchase) {
  Phone phone;
  phone.wallet.receipt = "{}";
  phone.showPaymentScreen();
  phone.pay();
  phone.host.runUntilAlert("Connection problem");
  EXPECT_TRUE(phone.host.log().contains("Receipt polling timed out after 60 seconds."));
  phone.host.pressAlert("Retry");
  phone.host.runFor(1s);
  EXPECT_TRUE(phone.busy());
  phone.wallet.receipt = R"({"status":"SUCCESS"})";
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  EXPECT_EQ(phone.wallet.asked("/purchase/"), 1U);
}

TEST(Payment, WhileOneIsUnderWayNoSecondOneBegins) {
  Phone phone;
  phone.wallet.next("/purchase/", ServerReply().after(5s).fail("no network"));
  phone.showPaymentScreen();
  phone.pay();
  const auto screen = phone.host.topController();
  const auto tapBoth = [&screen] {
    screen->performAction("proceedAction");
    screen->performAction("cardAction");
  };
  tapBoth();
  phone.host.later(5s, tapBoth);  // when the answer is there and the alert on its way
  phone.host.runUntilAlert("Connection problem");
  tapBoth();
  phone.host.runFor(10s);
  EXPECT_EQ(phone.wallet.asked("/purchase/"), 1U);

  phone.host.pressAlert("Cancel");
  phone.host.runUntilIdle();
  EXPECT_FALSE(phone.busy());
  phone.host.tap("proceedButton");
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  EXPECT_EQ(phone.wallet.asked("/purchase/"), 2U);
}

TEST(Payment, CancelWhileOneIsUnderWayEndsTheFlowAndDropsTheAnswer) {
  for (const char* slow : {"/purchase/", "/receipt/poll/"}) {
    SCOPED_TRACE(slow);
    Phone phone;
    phone.wallet.next(slow, ServerReply().after(5s).status(200).body(
                                R"({"status":"SUCCESS","transactionId":1})"));
    phone.showPaymentScreen();
    phone.pay();
    phone.host.runFor(1s);
    phone.host.tap("cancelAction");
    phone.host.runFor(120s);
    EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
    EXPECT_FALSE(phone.busy());
    EXPECT_EQ(phone.alert(), "");
  }
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

TEST(Payment, AnAmountIsSentWithAPointAndOnlyFilteredOnTheNumberPad) {
  Phone phone;
  phone.wallet.codeInfo = kOpenAmount;
  phone.showPaymentScreen();
  const auto field = phone.host.user().outlet<TextField>("inputAmountField");
  field->setKeyboard(Keyboard::standard);
  phone.host.user().replaceAll("inputAmountField", "1,50");
  EXPECT_EQ(field->text(), "1,50");
  phone.pay();
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_THAT(phone.wallet.lastBody("/purchase/"), HasSubstr(R"("amount" : "1.50")"));
}

TEST(Payment, ThePositionIsTakenWhileTheScreenIsUp) {
  Phone phone;
  phone.showPaymentScreen();
  EXPECT_TRUE(phone.host.locationManager().updating());
  phone.host.locationManager().sendFixes({{-33.5, 18.25, 5, {}}});
  phone.pay();
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_FALSE(phone.host.locationManager().updating());
  EXPECT_THAT(phone.wallet.lastBody("/purchase/"), HasSubstr("[G:-33.5,18.25]"));
}

TEST(Payment, TheScreenStandsWithoutCodeInformationOrCards) {
  Phone phone;
  OXSession::currentSession()->presentingController = phone.host.root();
  OXSession::currentSession()->showPurchaseScreen();
  EXPECT_EQ(phone.screen(), "Product");
  EXPECT_EQ(phone.shown("cardHintView"), "Add Card");
  EXPECT_EQ(phone.shown("cardImageView"), "other100");
  EXPECT_EQ(phone.shown("inputAmountField"), "0.00");
  EXPECT_TRUE(phone.hidden("pinField"));
  EXPECT_TRUE(phone.hidden("cvvField"));
  EXPECT_TRUE(phone.hidden("testWarningLabel"));
  phone.host.type("inputAmountField", "1");
  phone.host.tap("proceedButton");
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), "");
}

}  // namespace orlix::test
