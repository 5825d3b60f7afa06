// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ui/Storyboard.h"

namespace orlix {

/// Registers "SecureCode" and "3DAuthSecureCode".
void addSecureCodeScreens(Storyboard& storyboard);

}  // namespace orlix
