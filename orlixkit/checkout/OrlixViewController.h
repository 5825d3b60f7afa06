// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/checkout/SessionScreen.h"

namespace orlix {

/// Base class of the library's screens: brand colours, fonts, and the ribbon at the bottom.
class OrlixViewController : public SessionScreen {
 public:
  void viewDidLoad() override;
  void viewWillAppear() override;
  void viewDidAppear() override;
  void viewWillDisappear() override;

  void addBottomRibbon();
  void removeBottomRibbon();
  static void changeFontForView(const std::shared_ptr<View>& view);
  static void changeFontForLabel(Label& label);
  /// Writes the names of the brand's fonts to the log.
  static void debugPrintFonts();

 protected:
  /// The button of this outlet, with its title and the action that a touch performs.
  std::shared_ptr<Button> button(const std::string& outletName, const std::string& title,
                                 const std::string& actionName);

  /// The secure code screens leave their frame alone in landscape.
  virtual bool isSecureScreen() const { return false; }

 private:
  std::shared_ptr<ImageView> ribbonView_;
};

}  // namespace orlix
