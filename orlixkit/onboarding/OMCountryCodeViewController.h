// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orlixkit/onboarding/CountryCellCodes.h"
#include "orlixkit/onboarding/OrlixTableViewController.h"

namespace orlix {

class OXActivationViewController;

/// List of countries and dialling codes, to choose one for the activation screen. Shown in a
/// navigation container.
class OMCountryCodeViewController : public OrlixTableViewController {
 public:
  OMCountryCodeViewController();
  void viewDidLoad() override;

  std::size_t numberOfRows() override { return countryCellCodes_.size(); }
  TableCell cellForRow(std::size_t row) override;
  void didSelectRow(std::size_t row) override;
  void cancelAction();

  std::string currentCountryCode;  ///< the code to mark
  std::weak_ptr<OXActivationViewController> authController;

 private:
  std::vector<CountryCellCode> countryCellCodes_;
  std::shared_ptr<Button> cancelButton_;
};

}  // namespace orlix
