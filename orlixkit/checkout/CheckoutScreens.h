// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ui/Storyboard.h"

namespace orlix {

/// Registers "Waiting" and "Product".
void addCheckoutScreens(Storyboard& storyboard);

}  // namespace orlix
