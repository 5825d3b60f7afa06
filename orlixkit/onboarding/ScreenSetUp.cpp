// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/ScreenSetUp.h"

#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

void applyOnboardingLook(ViewController& screen) {
  screen.view()->setBackgroundColor({0.10588235, 0.11764706, 0.14901961, 1.0});
  OXUtil::styleButtonsForView(screen.view());
}

void showTermsSentence(Label& label, const std::string& html) {
  label.setHtml(html);
  label.setAlignment(TextAlignment::center);
  label.setFont({OXUtil::regularFont(), 14});
  label.setTextColor({0.439, 0.443, 0.455, 1.0});
}

void closeScreen(ViewController& screen) {
  if (const auto below = screen.presentingViewController()) {
    below->dismiss(true);
  }
}

}  // namespace orlix
