// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ui/Containers.h"

namespace orlix {

/// A navigation container that does not rotate.
class RotationAwareNavigationController : public NavigationController {
 public:
  bool shouldAutorotate() const override { return false; }
};

}  // namespace orlix
