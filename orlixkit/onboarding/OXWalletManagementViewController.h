// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/records/CardOption.h"

namespace orlix {

/// Start screen of wallet management: shows the last used card, leads to the other screens.
class OXWalletManagementViewController : public OrlixViewController {
 public:
  OXWalletManagementViewController();
  void viewDidLoad() override;
  bool showsSessionData() const override { return true; }
  void sessionDataChanged() override;

  void showSelectedCard();
  /// Leads to the cards, or to the form for the first one.
  static void cardAction(OXSession& current);

 private:
  std::shared_ptr<View> cardView_;
  std::shared_ptr<ImageView> cardImageView_;
  std::shared_ptr<Label> cardHintView_;
  std::shared_ptr<Button> doneButton_;
  std::optional<CardOption> selectedCard_;
};

}  // namespace orlix
