// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// On the screen that asks for the proof of a card, of this kind.
struct Validation : Phone {
  explicit Validation(const std::string& type) {
    wallet.cards = {cardJson(7, "0007", R"(,"validated":false,"validationtype":")" + type + "\"")};
    showPaymentScreen();
    tap("proceedButton");
    EXPECT_EQ(screen(), "CardValidation");
  }
};

}  // namespace

TEST(CardValidation, AsksForNothingAndTakesEverySentenceButOneForARemovedCard) {
  for (const std::string answer :
       {R"({"message":"Your card has been added."})", R"({"message":"your card has been added"})",
        R"({"message":null})", "{}"}) {
    SCOPED_TRACE(answer);
    Validation phone("SIMPLE");
    EXPECT_TRUE(phone.hidden("dateOfBirthField"));
    phone.wallet.always("/card/validate/", answer);
    phone.tap("proceedButton");
    EXPECT_EQ(phone.wallet.sent("/card/validate/", "inputValue"), "");
    EXPECT_EQ(phone.alert(),
              "Warning: YOUR DATE OF BIRTH WAS NOT CORRECT. YOUR CARD HAS BEEN REMOVED.");
    EXPECT_FALSE(phone.busy());
    EXPECT_EQ(phone.wallet.asked("/lookup/"), 1U);
    phone.wallet.cards.clear();
    phone.press("Cancel");
    EXPECT_EQ(phone.screen(), "Product");
    EXPECT_EQ(phone.shown("cardHintView"), "Add Card");
  }
}

TEST(CardValidation, NamesNoCardThatTheServerHasNotNamed) {
  Phone phone;
  phone.wallet.cards = {R"({"cardId":7,"validated":false,"validationtype":"SIMPLE"})"};
  phone.showPaymentScreen();
  phone.tap("proceedButton");
  EXPECT_EQ(phone.shown("infoLabel"), "CONFIRM THAT YOU ARE THE OWNER OF THIS CARD ENDING IN ?");
}

TEST(CardValidation, SendsADateOfBirthYearFirstOnceItIsComplete) {
  Validation phone("DOB");
  phone.host.type("dateOfBirthField", "3112199");
  phone.tap("proceedButton");
  EXPECT_EQ(phone.alert(), "Warning: Enter a valid date of birth DD/MM/YYY");
  phone.press("Ok");
  phone.host.type("dateOfBirthField", "9");
  phone.wallet.always("/card/validate/", answers::kValidated);
  phone.tap("proceedButton");
  EXPECT_EQ(phone.wallet.sent("/card/validate/", "inputValue"), "1999-12-31");
  EXPECT_EQ(phone.screen(), "Product");
}

}  // namespace orlix::test
