// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OnboardingScreens.h"

#include "orlixkit/checkout/RotationAwareNavigationController.h"
#include "orlixkit/onboarding/OMCountryCodeViewController.h"
#include "orlixkit/onboarding/OMTermsAndConditionsViewController.h"
#include "orlixkit/onboarding/OXActivationCodeViewController.h"
#include "orlixkit/onboarding/OXActivationViewController.h"
#include "orlixkit/onboarding/OXAddCardViewController.h"
#include "orlixkit/onboarding/OXCardValidationViewController.h"
#include "orlixkit/onboarding/OXCardsViewController.h"
#include "orlixkit/onboarding/OXMsisdnRelinkViewController.h"
#include "orlixkit/onboarding/OXTermsAndConditionsChangeViewController.h"
#include "orlixkit/onboarding/OXWalletManagementViewController.h"

namespace orlix {

namespace {

template <class Screen>
std::shared_ptr<ViewController> screen() {
  return std::make_shared<Screen>();
}

template <class Screen>
std::shared_ptr<ViewController> screenInContainer() {
  const auto container = std::make_shared<RotationAwareNavigationController>();
  container->setRoot(std::make_shared<Screen>());
  return container;
}

}  // namespace

void addOnboardingScreens(Storyboard& storyboard) {
  storyboard.add("Activation", screen<OXActivationViewController>);
  storyboard.add("CountryCode", screenInContainer<OMCountryCodeViewController>);
  storyboard.add("ActivationCode", screen<OXActivationCodeViewController>);
  storyboard.add("MsisdnRelink", screen<OXMsisdnRelinkViewController>);
  storyboard.add("AddCard", screen<OXAddCardViewController>);
  storyboard.add("CardValidation", screen<OXCardValidationViewController>);
  storyboard.add("Cards", screen<OXCardsViewController>);
  storyboard.add("WalletManagement", screen<OXWalletManagementViewController>);
  storyboard.add("TermsAndConditions", screenInContainer<OMTermsAndConditionsViewController>);
  storyboard.add("TermsAndConditionChange", screen<OXTermsAndConditionsChangeViewController>);
}

}  // namespace orlix
