// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/records/CardOption.h"
#include "orlixkit/ui/TableView.h"

namespace orlix {

/// Lists the wallet's cards: choose one for payment, remove one, add another.
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

  /// Returns to the screen that opened the list.
  static void showScreen(OXSession& current);
  /// Asks for confirmation to remove the card of this row.
  void deleteCardAction(std::size_t row);
  /// Removes a card on the server. Also called by the network alert's retry, with the same card.
  void deleteCard(const CardOption& card);

 private:
  std::shared_ptr<Button> deleteButton(std::size_t row);
  std::shared_ptr<OXCardsViewController> self();
  std::size_t chosenRow() const;

  std::int64_t chosenCardId_ = 0;  ///< when the list was opened
  std::shared_ptr<TableView> tableView_;
  std::shared_ptr<Button> addCardButton_;
  std::shared_ptr<Button> cancelButton_;
};

}  // namespace orlix
