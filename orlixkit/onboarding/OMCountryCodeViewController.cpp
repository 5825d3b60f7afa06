// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OMCountryCodeViewController.h"

#include <fmt/format.h>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/onboarding/OXActivationViewController.h"
#include "orlixkit/onboarding/ScreenSetUp.h"

namespace orlix {

OMCountryCodeViewController::OMCountryCodeViewController()
    : cancelButton_(button("cancelButton", "CANCEL", "cancelAction")) {
  action("cancelAction", [this] { cancelAction(); });
}

void OMCountryCodeViewController::viewDidLoad() {
  OrlixTableViewController::viewDidLoad();
  applyOnboardingLook(*this);
  OXUtil::addOrlixLogoToNavigationItem(*this);
  countryCellCodes_ = loadCountryCellCodes();
}

TableCell OMCountryCodeViewController::cellForRow(std::size_t row) {
  const CountryCellCode& country = countryCellCodes_[row];
  TableCell cell;
  cell.identifier = "CountryCodeCell";
  cell.text = fmt::format("{} ({})", country.name, country.code);
  cell.checkmark = country.code == currentCountryCode;
  return cell;
}

void OMCountryCodeViewController::didSelectRow(std::size_t row) {
  if (const auto screen = authController.lock()) {
    screen->changeCountryCode(countryCellCodes_[row].code);
  }
  closeScreen(*this);
}

void OMCountryCodeViewController::cancelAction() { closeScreen(*this); }

}  // namespace orlix
