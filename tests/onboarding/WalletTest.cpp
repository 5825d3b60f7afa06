// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/ui/TableView.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// On the list of a wallet of two cards.
struct CardList : Phone {
  explicit CardList(Entry entry) : before(entry == Entry::wallet ? "WalletManagement" : "Product") {
    wallet.cards = {cardJson(5, "0005"), cardJson(9, "0009")};
    begin(entry, before);
    tap("cardView");
    EXPECT_EQ(screen(), "Cards");
  }
  std::shared_ptr<TableView> table() { return host.user().outlet<TableView>("tableView"); }
  /// Texts of the rows with a checkmark.
  std::string marked() {
    std::string texts;
    for (std::size_t row = 0; row < table()->rowCount(); ++row) {
      texts += table()->cell(row).checkmark ? table()->cell(row).text : "";
    }
    return texts;
  }

  std::string before;
};

}  // namespace

TEST(Wallet, ShowsTheCardThatPaysOrOffersToAddOne) {
  Phone phone;
  phone.wallet.cards = {cardJson(5, "0005", R"(,"validated":false,"validationtype":"3DS")")};
  phone.begin(Entry::wallet, "WalletManagement");
  EXPECT_EQ(phone.shown("cardHintView") + phone.shown("cardImageView"), "xxx-0005visa100");
  phone.beginAddCard(Entry::wallet);
  phone.tap("cancelButton");
  EXPECT_EQ(phone.shown("cardHintView") + phone.shown("cardImageView"), "Add Cardother100");
  phone.tap("cardView");
  EXPECT_EQ(phone.screen(), "AddCard");
}

TEST(Wallet, LogsAKindOfValidationThatItDoesNotKnow) {
  for (const std::string card :
       {R"(,"validated":false,"validationtype":"3DS")",
        R"(,"validated":true,"validationtype":"3DS")",
        R"(,"validated":false,"validationtype":"DOB")",
        R"(,"validated":false,"validationtype":"SIMPLE")", R"(,"validationtype":"3DS")"}) {
    Phone phone;
    phone.wallet.cards = {cardJson(5, "0005", card)};
    phone.begin(Entry::wallet, "WalletManagement");
    EXPECT_EQ(phone.host.log().contains("Unsupported card validation type 3DS"),
              card == R"(,"validated":false,"validationtype":"3DS")");
  }
}

TEST(Wallet, AListThatIsHeldWhenItsFlowIsOverIsEmptyAndDeletesNothing) {
  CardList list(Entry::checkout);
  const auto table = list.table();
  const auto button = table->cell(0).button;
  std::weak_ptr<ViewController> screen = list.host.topController();
  auto held = screen.lock();
  OXSession::currentSession()->returnUserDidCancel();
  for (const bool isHeld : {true, false}) {
    list.host.runUntilIdle();
    EXPECT_EQ(screen.expired(), !isHeld);
    EXPECT_EQ(table->rowCount(), 0U);
    button->onTouchUpInside();
    EXPECT_EQ(list.alert(), "");
    held.reset();
  }
  EXPECT_EQ(list.app->heard, Heard{"cancelled"});
}

TEST(Wallet, ChoosingOrCancellingLeadsBackToWhereTheListWasOpenedFrom) {
  for (const Entry entry : {Entry::checkout, Entry::wallet}) {
    CardList list(entry);
    EXPECT_EQ(list.marked(), "xxx-0005") << "the one that is shown for want of a choice";
    list.tap("cancelButton");
    EXPECT_EQ(list.screen(), list.before);
    EXPECT_EQ(OXUtil::getLastUsedCardid(), 0);
    list.tap("cardView");
    list.host.user().chooseRow("tableView", 1);
    list.host.runUntilIdle();
    EXPECT_EQ(OXUtil::getLastUsedCardid(), 9);
    EXPECT_EQ(list.screen(), list.before);
    EXPECT_EQ(list.shown("cardHintView"), "xxx-0009");
    list.tap("cardView");
    EXPECT_EQ(list.marked(), "xxx-0009");
    list.tap("addCardButton");
    EXPECT_EQ(list.screen(), "AddCard");
  }
}

TEST(Wallet, AsksBeforeItDeletesAndReloadsAfterwardsWhateverTheServerSays) {
  for (const std::string& answer : {std::string("{}"), answers::kFailed}) {
    CardList list(Entry::wallet);
    list.wallet.always("/card/delink/", answer);
    list.host.user().tapRowButton("tableView", 0);
    list.host.runUntilIdle();
    const auto alert = list.host.user().topAlert();
    EXPECT_EQ(list.alert(), "Delete Card: Are you sure you wish to discard this card?");
    ASSERT_EQ(alert->actions().size(), 2U);
    EXPECT_EQ(alert->actions()[0].style, AlertActionStyle::cancel);
    EXPECT_EQ(alert->actions()[1].style, AlertActionStyle::destructive);
    list.press("Cancel");
    EXPECT_FALSE(list.table()->editing());
    EXPECT_EQ(list.wallet.asked("/card/delink/"), 0U);
    list.host.user().tapRowButton("tableView", 0);
    list.host.runUntilIdle();
    list.wallet.cards = {cardJson(9, "0009")};
    list.press("Delete");
    EXPECT_EQ(list.wallet.sent("/card/delink/", "cardId"), "5");
    EXPECT_EQ(list.wallet.asked("/card/list/"), 2U);
    EXPECT_FALSE(list.busy());
    EXPECT_EQ(list.screen(), "WalletManagement");
    EXPECT_EQ(list.shown("cardHintView"), "xxx-0009");
  }
}

}  // namespace orlix::test
