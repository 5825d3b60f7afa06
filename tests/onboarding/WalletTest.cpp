#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/ui/TableView.h"
#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

class Wallet : public FlowTest {
 protected:
  void beginWithCards(Entry entry) {
    flow.begin(entry, entry == Entry::wallet ? "WalletManagement" : "Product", "");
    flow.host.tap(entry == Entry::wallet ? "cardView" : "cardAction");
    flow.host.runUntilIdle();
    ASSERT_EQ(flow.screen(), "Cards");
  }

  std::shared_ptr<TableView> table() { return flow.host.user().outlet<TableView>("tableView"); }
};

TEST_F(Wallet, ShowsTheCardThatPays) {
  struct Row {
    std::string name;
    std::vector<std::string> cards;
    std::string hint;
    std::string image;
    std::string logged;
  };
  const std::vector<Row> rows{
      {"no validation state", {cardJson(5, "0005")}, "xxx-0005", "visa100", "card.hasValidated: 0"},
      {"validated",
       {cardJson(5, "0005", R"(,"validated":true)")},
       "xxx-0005",
       "visa100",
       "card.validated: 1"},
      {"a type that the screen knows",
       {cardJson(5, "0005", R"(,"validated":false,"validationtype":"DOB")")},
       "xxx-0005",
       "visa100",
       "card.validationtype: DOB"},
      {"a type that it does not",
       {cardJson(5, "0005", R"(,"validated":false,"validationtype":"3DS")")},
       "xxx-0005",
       "visa100",
       "Unsupported card validation type 3DS"},
  };
  for (const Row& row : rows) {
    Flow& fresh = anew();
    fresh.setCards(row.cards);
    fresh.begin(Entry::wallet, "WalletManagement", "");
    EXPECT_EQ(fresh.shown("cardHintView"), row.hint) << row.name;
    EXPECT_EQ(fresh.shown("cardImageView"), row.image) << row.name;
    EXPECT_TRUE(fresh.host.log().contains(row.logged)) << row.name;
    EXPECT_EQ(fresh.host.log().contains("Unsupported"), row.logged.starts_with("Unsupported"))
        << row.name;
  }
}

TEST_F(Wallet, OffersToAddACardWhenThereIsNone) {
  flow.setCards({});
  flow.begin(Entry::wallet, "AddCard", "");
  flow.host.tap("cancelButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "WalletManagement");
  EXPECT_EQ(flow.shown("cardHintView"), "Add Card");
  EXPECT_EQ(flow.shown("cardImageView"), "other100");
  flow.host.tap("cardView");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "AddCard");
}

TEST_F(Wallet, ListsTheCardsInTheServersOrder) {
  beginWithCards(Entry::checkout);
  ASSERT_EQ(table()->rowCount(), 2U);
  EXPECT_EQ(table()->cell(0).text, "xxx-0005");
  EXPECT_EQ(table()->cell(1).text, "xxx-0009");
  EXPECT_EQ(table()->cell(0).identifier, "CardCell");
  EXPECT_EQ(table()->cell(0).imageName, "visa100");
  EXPECT_FALSE(table()->separators());
  table()->setFrame({0, 0, 280, 200});
  const TableCell cell = table()->cell(1);
  EXPECT_EQ(cell.button->frame(), (Rect{245, 5, 30, 30}));
  EXPECT_EQ(cell.button->tag(), 1);
  EXPECT_EQ(cell.button->imageName(), "trash");
}

TEST_F(Wallet, ChoosingACardLeadsBackToWhereTheListWasOpenedFrom) {
  for (const auto& [entry, screen] : std::vector<std::pair<Entry, std::string>>{
           {Entry::checkout, "Product"}, {Entry::wallet, "WalletManagement"}}) {
    Flow& fresh = anew();
    fresh.begin(entry, screen, "");
    fresh.host.tap(entry == Entry::wallet ? "cardView" : "cardAction");
    fresh.host.runUntilIdle();
    fresh.host.user().chooseRow("tableView", 1);
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.lastUsedCard(), 9);
    EXPECT_EQ(fresh.screen(), screen);
    EXPECT_EQ(fresh.shown("cardHintView"), "xxx-0009");
  }
}

TEST_F(Wallet, LeavesTheListByCancelAndByAddCard) {
  beginWithCards(Entry::wallet);
  flow.host.tap("cancelButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "WalletManagement");
  EXPECT_EQ(flow.lastUsedCard(), 0);
  flow.host.tap("cardView");
  flow.host.runUntilIdle();
  flow.host.tap("addCardButton");
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.screen(), "AddCard");
}

TEST_F(Wallet, AsksBeforeItDeletes) {
  beginWithCards(Entry::wallet);
  flow.host.user().tapRowButton("tableView", 1);
  flow.host.runUntilIdle();
  const auto alert = flow.host.user().topAlert();
  ASSERT_TRUE(alert);
  EXPECT_EQ(flow.alert(), "Delete Card: Are you sure you wish to discard this card?");
  ASSERT_EQ(alert->actions().size(), 2U);
  EXPECT_EQ(alert->actions()[0].title, "Cancel");
  EXPECT_EQ(alert->actions()[0].style, AlertActionStyle::cancel);
  EXPECT_EQ(alert->actions()[1].title, "Delete");
  EXPECT_EQ(alert->actions()[1].style, AlertActionStyle::destructive);
  flow.host.pressAlert("Cancel");
  flow.host.runUntilIdle();
  EXPECT_FALSE(table()->editing());
  EXPECT_EQ(flow.requestsTo("/card/delink/"), 0U);
}

TEST_F(Wallet, ReloadsAfterADeletionWhateverTheServerSays) {
  for (const std::string answer : {R"({"status":"SUCCESS"})", R"({"status":"FAILED"})"}) {
    Flow& fresh = anew();
    fresh.begin(Entry::wallet, "WalletManagement", "");
    fresh.host.tap("cardView");
    fresh.host.runUntilIdle();
    fresh.answer("/card/delink/", answer);
    fresh.host.user().tapRowButton("tableView", 0);
    fresh.host.runUntilIdle();
    fresh.setCards({cardJson(9, "0009")});
    fresh.host.pressAlert("Delete");
    fresh.host.runUntilIdle();
    EXPECT_EQ(fresh.sent("/card/delink/", "cardId"), "5");
    EXPECT_EQ(fresh.requestsTo("/card/list/"), 2U);
    EXPECT_FALSE(fresh.indicatorIsUp());
    EXPECT_EQ(fresh.screen(), "WalletManagement");
    EXPECT_EQ(fresh.shown("cardHintView"), "xxx-0009");
  }
}

TEST_F(Wallet, LeavesRowsOfAReplacedFlowWithoutEffect) {
  beginWithCards(Entry::wallet);
  const auto button = table()->cell(1).button;
  const auto old = table();
  flow.begin(Entry::wallet);
  EXPECT_EQ(old->rowCount(), 0U);
  button->onTouchUpInside();
  flow.host.runUntilIdle();
  EXPECT_EQ(flow.alert(), "");
  EXPECT_EQ(flow.screen(), "WalletManagement");
}

}  // namespace
}  // namespace orlix
