// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/records/CardOption.h"
#include "orlixkit/records/MTCardValidateResponse.h"
#include "orlixkit/widgets/FormattedTextField.h"

namespace orlix {

/// Asks the user to validate the last used card, by date of birth where the card requires it.
class OXCardValidationViewController : public OrlixViewController {
 public:
  OXCardValidationViewController();
  void viewDidLoad() override;

  void proceedAction();
  /// Sends the validation. Also called by the network alert's retry, with the same text.
  void unlockCardWithDateOfBirth(const std::string& dateOfBirth);

  /// Year-month-day from a text of exactly ten characters, absent otherwise. The characters are not
  /// validated.
  static std::optional<std::string> formatDobForBackend(std::string_view text);

 private:
  void answered(const MTCardValidateResponse& response);

  std::shared_ptr<Label> infoLabel_;
  std::shared_ptr<View> dobGroupView_;
  std::shared_ptr<Label> dateOfBirthLabel_;
  std::shared_ptr<FormattedTextField> dateOfBirthField_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> cancelButton_;
  CardOption card_;
  bool needsDob_ = false;
};

}  // namespace orlix
