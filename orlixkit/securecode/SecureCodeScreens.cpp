// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/securecode/SecureCodeScreens.h"

#include "orlixkit/securecode/OX3DAuthSecureCodeViewController.h"

namespace orlix {

void addSecureCodeScreens(Storyboard& storyboard) {
  storyboard.add("SecureCode", [] { return std::make_shared<OXSecureCodeViewController>(); });
  storyboard.add("3DAuthSecureCode",
                 [] { return std::make_shared<OX3DAuthSecureCodeViewController>(); });
}

}  // namespace orlix
