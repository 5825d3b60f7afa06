#include <gmock/gmock.h>

#include "orlixkit/checkout/OXProductViewController.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

const std::vector<std::string> kScreensOfOthers{"Cards", "AddCard", "CardValidation", "SecureCode",
                                                "3DAuthSecureCode"};

std::string cards(const std::string& rest) {
  return R"([{"cardId":5,"cardHint":"4242","cardType":"visa")" + rest + "}]";
}

void showScreenFor(Phone& phone, const std::string& card) {
  phone.addPlainScreens(kScreensOfOthers);
  phone.wallet.cards = cards(card);
  phone.showPaymentScreen();
}

}  // namespace

TEST(CardRoads, TheCardDecidesWhatIsAskedForAndWhereProceedLeads) {
  struct Case {
    std::string name, card, button;
    bool asksForPin, asksForCvv;
    std::string leadsTo;  ///< "Product": the screen stays
    std::size_t purchases;
  };
  const std::vector<Case> cases{
      {"PIN", R"(,"method":"AMT")", "PAY", true, false, "", 1},
      {"PIN and CVV, validated", R"(,"method":"AMT","needCvv":true,"validated":true)", "PAY", true,
       true, "", 1},
      {"without PIN", R"(,"method":"CNP")", "PAY", false, false, "", 1},
      {"secure code", R"(,"method":"SECURE_CODE","needCvv":true)", "PAY", false, true, "SecureCode",
       0},
      {"wallet leads nowhere", R"(,"method":"WALLET")", "PAY", false, false, "Product", 0},
      {"no method leads nowhere", "", "PAY", false, false, "Product", 0},
      {"by date of birth", R"(,"method":"AMT","validated":false,"validationtype":"DOB")", "UNLOCK",
       false, false, "CardValidation", 0},
      {"simple, with a CVV", R"(,"needCvv":true,"validated":false,"validationtype":"SIMPLE")",
       "UNLOCK", false, false, "CardValidation", 0},
      {"by 3-D Secure",
       R"(,"method":"AMT","needCvv":true,"validated":false,)"
       R"("validationtype":"3DS")",
       "PAY", false, true, "3DAuthSecureCode", 0},
      {"by nobody knows what", R"(,"method":"AMT","validated":false,"validationtype":"dob")",
       "PROCEED", true, true, "Product", 0},
      {"by nothing", R"(,"method":"AMT","validated":false)", "PROCEED", true, true, "Product", 0},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    showScreenFor(phone, row.card);
    EXPECT_EQ(phone.shown("proceedButton"), row.button);
    EXPECT_EQ(phone.hidden("pinField"), !row.asksForPin);
    EXPECT_EQ(phone.hidden("cvvField"), !row.asksForCvv);
    for (const char* field : {"pinField", "cvvField"}) {
      if (!phone.hidden(field)) {
        phone.host.type(field, "1234");
      }
    }
    phone.host.tap("proceedButton");
    phone.host.runFor(std::chrono::seconds(1));
    EXPECT_EQ(phone.screen(), row.leadsTo);
    EXPECT_EQ(phone.wallet.asked("/purchase/"), row.purchases);
    // A card that only has to be unlocked is not chosen yet; any other is, road or no road.
    EXPECT_EQ(OXUtil::getLastUsedCardid(), row.button == "UNLOCK" ? 0 : 5);
  }
}

TEST(CardRoads, AnUnvalidatedCardIsAuthenticatedFirstAndThenPaysThroughTheSecureCodeScreen) {
  Phone phone;
  phone.wallet.codeInfo = R"({"code":"C-1","amountString":""})";
  showScreenFor(phone, R"(,"needCvv":true,"validated":false,"validationtype":"3DS")");
  phone.host.type("inputAmountField", "1250");
  phone.host.type("cvvField", "321");
  phone.host.tap("proceedButton");

  const auto session = OXSession::currentSession();
  EXPECT_EQ(phone.screen(), "3DAuthSecureCode");
  EXPECT_EQ(session->cardId, 5);
  EXPECT_EQ(session->cvv, SecretString("321"));
  EXPECT_EQ(session->amount, "1.0");
  EXPECT_TRUE(session->mustValidateCard);

  session->returnAuth3DsValidated();
  phone.host.runUntilScreen("SecureCode");
  EXPECT_EQ(session->amount, "12.50");
  EXPECT_EQ(session->cvv, SecretString("321"));
  EXPECT_TRUE(session->mustValidateCard);
  EXPECT_TRUE(phone.app->heard.empty());
}

TEST(CardRoads, AValidatedCardNeedsNoValidationOnTheSecureCodeScreen) {
  Phone phone;
  showScreenFor(phone, R"(,"method":"secure_code","validated":true)");
  phone.host.tap("proceedButton");
  EXPECT_EQ(phone.screen(), "SecureCode");
  EXPECT_FALSE(OXSession::currentSession()->mustValidateCard);
  EXPECT_EQ(OXSession::currentSession()->amount, "25.00");
}

TEST(CardRoads, TheCardAreaLeadsToTheListAndBackToTheTypedAmount) {
  Phone phone;
  phone.wallet.codeInfo = R"({"code":"C-1","amountString":""})";
  showScreenFor(phone, R"(,"method":"AMT"},{"cardId":9,"cardHint":"0009","cardType":"amex")");
  phone.host.type("inputAmountField", "375");
  phone.host.tap("cardView");
  EXPECT_EQ(phone.screen(), "Cards");
  OXUtil::setLastUsedCardId(9);
  OXSession::currentSession()->showPurchaseScreen();
  EXPECT_EQ(phone.shown("inputAmountField"), "3.75");
  EXPECT_EQ(phone.shown("cardHintView"), "xxx-0009");
  EXPECT_EQ(phone.shown("cardImageView"), "america_express100");
}

TEST(CardRoads, WithoutACardTheCardAreaLeadsToAddingOne) {
  Phone without;
  without.addPlainScreens(kScreensOfOthers);
  without.wallet.cards = "[]";
  without.showPaymentScreen();
  without.host.tap("cardView");
  EXPECT_EQ(without.screen(), "AddCard");
}

TEST(CardRoads, TheSegueToTheAddCardScreenIsACardOverTheScreen) {
  Phone phone;
  showScreenFor(phone, "");
  const auto screen = phone.host.topController();
  screen->performSegue("AddCard");
  phone.host.runUntilScreen("AddCard");
  EXPECT_EQ(phone.host.topController()->modalPresentationStyle, ModalPresentationStyle::custom);
  EXPECT_NE(phone.host.topController()->presentationController(), nullptr);
}

}  // namespace orlix::test
