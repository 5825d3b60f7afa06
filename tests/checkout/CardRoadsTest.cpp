// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXUtil.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

const std::string kAmountLeftOpen = R"({"code":"C-1","amountString":""})";

void showScreenFor(Phone& phone, const std::string& card) {
  phone.addPlainScreens({"Cards", "AddCard", "CardValidation", "SecureCode", "3DAuthSecureCode"});
  phone.wallet.cards = {cardJson(5, "4242", card)};
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
  const std::string cvv = R"(,"needCvv":true)";
  const std::string unproved = R"(,"validated":false,"validationtype":)";
  const std::string amt = R"(,"method":"AMT")";
  const std::string byIssuer = R"(,"method":"SECURE_CODE")";
  const std::vector<Case> cases{
      {"PIN", amt, "PAY", true, false, "", 1},
      {"PIN and CVV, validated", amt + cvv + R"(,"validated":true)", "PAY", true, true, "", 1},
      {"without PIN", R"(,"method":"CNP")", "PAY", false, false, "", 1},
      {"secure code", byIssuer + cvv, "PAY", false, true, "SecureCode", 0},
      {"wallet leads nowhere", R"(,"method":"WALLET")", "PAY", false, false, "Product", 0},
      {"no method leads nowhere", "", "PAY", false, false, "Product", 0},
      {"by date of birth", amt + unproved + "\"DOB\"", "UNLOCK", false, false, "CardValidation", 0},
      {"simple", cvv + unproved + "\"SIMPLE\"", "UNLOCK", false, false, "CardValidation", 0},
      {"by 3DS", amt + cvv + unproved + "\"3DS\"", "PAY", false, true, "3DAuthSecureCode", 0},
      {"by nobody knows what", amt + unproved + "\"dob\"", "PROCEED", true, true, "Product", 0},
      {"by nothing", amt + R"(,"validated":false)", "PROCEED", true, true, "Product", 0},
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
    phone.host.runFor(1s);
    EXPECT_EQ(phone.screen(), row.leadsTo);
    EXPECT_EQ(phone.wallet.asked("/purchase/"), row.purchases);
    // A card that only has to be unlocked is not chosen yet; any other is, road or no road.
    EXPECT_EQ(OXUtil::getLastUsedCardid(), row.button == "UNLOCK" ? 0 : 5);
  }
}

TEST(CardRoads, ALateLookupKeepsWhatWasTypedForTheCardUnlessItIsAnother) {
  Phone phone;
  showScreenFor(phone, R"(,"method":"AMT"},{"cardId":9,"cardHint":"0009","method":"AMT")");
  phone.host.type("pinField", "12");
  OXSession::currentSession()->dataChanged();
  EXPECT_EQ(phone.shown("pinField"), "••");
  OXUtil::setLastUsedCardId(9);
  OXSession::currentSession()->dataChanged();
  EXPECT_EQ(phone.shown("pinField"), "");
}

TEST(CardRoads, TheCardAreaLeadsToTheListAndBackToTheTypedAmountOrToAddingACard) {
  Phone phone;
  phone.wallet.codeInfo = kAmountLeftOpen;
  showScreenFor(phone, R"(,"method":"AMT"},{"cardId":9,"cardHint":"0009","cardType":"amex")");
  phone.host.type("inputAmountField", "375");
  phone.host.tap("cardView");
  EXPECT_EQ(phone.screen(), "Cards");
  OXUtil::setLastUsedCardId(9);
  OXSession::currentSession()->showPurchaseScreen();
  EXPECT_EQ(phone.shown("inputAmountField"), "3.75");
  EXPECT_EQ(phone.shown("cardHintView"), "xxx-0009");
  EXPECT_EQ(phone.shown("cardImageView"), "america_express100");
  OXSession::currentSession()->cards.clear();
  OXSession::currentSession()->showPurchaseScreen();
  EXPECT_EQ(phone.shown("cardHintView"), "Add Card");
  phone.host.tap("cardView");
  EXPECT_EQ(phone.screen(), "AddCard");
}

}  // namespace orlix::test
