// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/ui/View.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Applies the style of the onboarding screens: the dark background and the brand's buttons. Call
/// it once the view is loaded.
void applyOnboardingLook(ViewController& screen);

/// A sentence about the terms, an HTML fragment, in the style of such sentences.
void showTermsSentence(Label& label, const std::string& html);

/// Dismisses the screen, animated, together with its container.
void closeScreen(ViewController& screen);

}  // namespace orlix
