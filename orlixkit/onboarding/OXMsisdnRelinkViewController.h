// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/ui/TextField.h"

namespace orlix {

/// Asks for the mobile number registered with the bank for a card being added, and links the card
/// with it.
class OXMsisdnRelinkViewController : public OrlixViewController {
 public:
  OXMsisdnRelinkViewController();
  void viewDidLoad() override;

  /// Sends the number as typed. Also called by the network alert's retry.
  void proceedAction();

 private:
  void answered(const MTCardResponse& response);

  std::shared_ptr<Label> infoLabel_;
  std::shared_ptr<TextField> msisdnField_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> backButton_;
};

}  // namespace orlix
