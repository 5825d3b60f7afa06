// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/OrlixKit.h"

#include <utility>

#include "orlixkit/checkout/CheckoutScreens.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/OXVelloEnvironment.h"
#include "orlixkit/onboarding/OnboardingScreens.h"
#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/securecode/SecureCodeScreens.h"

namespace orlix {

namespace {

/// One line per floor that has screens.
void fillStoryboard(Storyboard& storyboard) {
  addCheckoutScreens(storyboard);
  addSecureCodeScreens(storyboard);
  addOnboardingScreens(storyboard);
  storyboard.onMissing = [](const std::string& message) {
    OXUtil::showAlertWithTitle("Error", message);
  };
}

}  // namespace

void installOrlixKit(std::shared_ptr<Host> host) {
  Host::install(std::move(host));
  fillStoryboard(Host::current().application().storyboard());
  OMVello::sharedOMVello().setEnvironment(std::make_shared<OXVelloEnvironment>());
  Host::current().endFlow = [] { OXSession::currentSession()->fail(); };
  OXOrlix::load();
}

}  // namespace orlix
