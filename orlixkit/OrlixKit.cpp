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

constexpr AlertText kAlertsOfAnyScreen[] = {
    {"Connection problem", "Please check your network connection and try again.", "Cancel, Retry"},
    {"Deregister", "Succesfully deregistered."},
    {"Error", "The storyboard has no screen \"<identifier>\"."}};

/// What the server has to say about this version of the library, when an entry call has no waiting
/// screen; that one declares them too.
constexpr AlertText kAlertsBeforeScreens[] = {{"Error", "<the server's message>"},
                                              {"Warning", "<the server's message>"}};

/// One line per floor that has screens.
void fillStoryboard(Storyboard& storyboard) {
  storyboard.alertsOfAnyScreen = kAlertsOfAnyScreen;
  storyboard.alertsBeforeScreens = kAlertsBeforeScreens;
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
