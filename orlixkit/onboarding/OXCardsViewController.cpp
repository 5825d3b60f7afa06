// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OXCardsViewController.h"

#include <algorithm>

#include <fmt/format.h>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/onboarding/ScreenSetUp.h"
#include "orlixkit/ports/UserDefaults.h"
#include "orlixkit/ui/AlertController.h"

namespace orlix {

OXCardsViewController::OXCardsViewController()
    : tableView_(outlet<TableView>("tableView")),
      addCardButton_(button("addCardButton", "ADD CARD", "addCardAction")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelAction")) {
  tableView_->setDataSource(this);
  action("addCardAction", [](OXSession& current) { current.showAddCardScreen(); });
  action("cancelAction", showScreen);
  static constexpr AlertText kAlerts[] = {
      {"Delete Card", "Are you sure you wish to discard this card?", "Cancel, Delete"}};
  declare({.alerts = kAlerts});
}

OXCardsViewController::~OXCardsViewController() { tableView_->setDataSource(nullptr); }

std::shared_ptr<OXCardsViewController> OXCardsViewController::self() {
  return std::static_pointer_cast<OXCardsViewController>(shared_from_this());
}

void OXCardsViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  tableView_->setSeparators(false);
  try {
    // Not by getLastUsedCard: showing the list must not write to the store.
    chosenCardId_ = OXUtil::getLastUsedCardid();
  } catch (const StoreException& failure) {
    log(std::string("OrlixKit: The chosen card cannot be marked: ") + failure.what());
  }
}

std::size_t OXCardsViewController::numberOfRows() {
  const auto current = session();
  return current ? current->cards.size() : 0;
}

TableCell OXCardsViewController::cellForRow(std::size_t row) {
  const CardOption& card = session()->cards[row];
  TableCell cell;
  cell.identifier = "CardCell";
  cell.text = fmt::format("xxx-{}", card.cardHint.value_or(""));
  cell.imageName = OXUtil::imageForCardType(card.cardType);
  cell.checkmark = row == chosenRow();
  cell.button = deleteButton(row);
  return cell;
}

std::size_t OXCardsViewController::chosenRow() const {
  const std::vector<CardOption>& cards = session()->cards;
  const auto found = std::find_if(cards.begin(), cards.end(), [this](const CardOption& card) {
    return card.cardId == chosenCardId_;
  });
  // The first card is the one shown for want of a choice.
  return found == cards.end() ? 0 : static_cast<std::size_t>(found - cards.begin());
}

std::shared_ptr<Button> OXCardsViewController::deleteButton(std::size_t row) {
  auto button = std::make_shared<Button>();
  button->setFrame({tableView_->frame().width - 35, 5, 30, 30});
  button->setImageName("trash");
  button->setTintColor(kWhite);
  button->setTag(static_cast<int>(row));
  button->onTouchUpInside = [weak = weak_from_this(), row] {
    if (const auto screen = std::static_pointer_cast<OXCardsViewController>(weak.lock())) {
      screen->deleteCardAction(row);
    }
  };
  return button;
}

void OXCardsViewController::didSelectRow(std::size_t row) {
  const auto current = session();
  OXUtil::setLastUsedCardId(current->cards[row].cardId);
  showScreen(*current);
}

void OXCardsViewController::showScreen(OXSession& current) {
  if (current.walletManagement) {
    current.showWalletManagementScreen();
  } else {
    current.showPurchaseScreen();
  }
}

void OXCardsViewController::deleteCardAction(std::size_t row) {
  // The list may have become shorter since the row was drawn.
  if (row >= numberOfRows()) {
    return;
  }
  const auto alert = std::make_shared<AlertController>(
      "Delete Card", "Are you sure you wish to discard this card?");
  alert->addAction(
      {"Cancel", AlertActionStyle::cancel, [table = tableView_] { table->setEditing(false); }});
  alert->addAction({"Delete", AlertActionStyle::destructive,
                    [screen = self(), card = session()->cards[row]] { screen->deleteCard(card); }});
  OXUtil::styleAlertController(*alert);
  session()->keepTrackOf(alert);
  present(alert, true);
}

void OXCardsViewController::deleteCard(const CardOption& card) {
  showProgress("Please wait...");
  send<MTCardResponse>(
      {.kind = "delete",
       .ask = [cardId = card.cardId](
                  KCVelloConnection& connection) { return connection.delinkCard(cardId); },
       // Whatever the answer says: the reloaded list shows the result.
       .answered =
           [screen = self()](const MTCardResponse&) {
             if (screen->hideProgress()) {
               OXOrlix::loadCodeInfo(nullptr);
               screen->tableView_->reloadData();
             }
           },
       .failed =
           [screen = self(), card] {
             // The alert hides the indicator.
             screen->offerRetry("delete " + std::to_string(card.cardId),
                                [screen, card] { screen->deleteCard(card); });
           },
       .answeredLate = [] { OXOrlix::reloadData(); }});
}

void OXCardsViewController::sessionDataChanged() { tableView_->reloadData(); }

}  // namespace orlix
