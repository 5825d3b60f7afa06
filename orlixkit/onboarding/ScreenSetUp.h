#pragma once

#include <string>

#include "orlixkit/platform/ui/View.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

/// The look that the onboarding screens share, beyond that of every screen: the dark background and
/// the brand's buttons. Once the view is loaded.
void applyOnboardingLook(ViewController& screen);

/// A sentence about the terms, an HTML fragment, in the look of such sentences.
void showTermsSentence(Label& label, const std::string& html);

/// Takes the screen away, animated, together with the container that it stands in.
void closeScreen(ViewController& screen);

}  // namespace orlix
