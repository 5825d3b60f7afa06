// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ui/Storyboard.h"

namespace orlix {

/// Registers the screens of enrolment, cards and terms: "Activation", "CountryCode",
/// "ActivationCode", "MsisdnRelink", "AddCard", "CardValidation", "Cards", "WalletManagement",
/// "TermsAndConditions" and "TermsAndConditionChange".
void addOnboardingScreens(Storyboard& storyboard);

}  // namespace orlix
