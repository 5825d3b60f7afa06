#pragma once

#include <memory>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/platform/ui/TableView.h"
#include "orlixkit/records/CardOption.h"

namespace orlix {

/// The wallet's cards: choose one to pay with, remove one, add another.
class OXCardsViewController : public OrlixViewController, public TableViewDataSource {
 public:
  OXCardsViewController();
  ~OXCardsViewController() override;
  OXCardsViewController(const OXCardsViewController&) = delete;
  OXCardsViewController& operator=(const OXCardsViewController&) = delete;

  void viewDidLoad() override;
  bool showsSessionData() const override { return true; }
  void sessionDataChanged() override;

  std::size_t numberOfRows() override;
  TableCell cellForRow(std::size_t row) override;
  void didSelectRow(std::size_t row) override;

  /// Back to where the list was opened from.
  void showScreen();
  void addCardAction();
  /// Asks whether the card of this row is to be removed.
  void deleteCardAction(std::size_t row);
  /// Removes a card on the server. What the network alert's retry calls, with the same card.
  void deleteCard(const CardOption& card);

 private:
  std::shared_ptr<Button> deleteButton(std::size_t row);
  std::shared_ptr<OXCardsViewController> self();

  std::shared_ptr<TableView> tableView_;
  std::shared_ptr<Button> addCardButton_;
  std::shared_ptr<Button> cancelButton_;
};

}  // namespace orlix
