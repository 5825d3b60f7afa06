#pragma once

#include "orlixkit/platform/ui/Storyboard.h"

namespace orlix {

/// Registers "Waiting" and "Product".
void addCheckoutScreens(Storyboard& storyboard);

}  // namespace orlix
