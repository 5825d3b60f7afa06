#pragma once

#include "orlixkit/platform/ui/Storyboard.h"

namespace orlix {

/// Registers "SecureCode" and "3DAuthSecureCode".
void addSecureCodeScreens(Storyboard& storyboard);

}  // namespace orlix
