// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Presents the library's screens as cards over the dimmed host screen.
class OXTransitioningDelegate : public TransitioningDelegate {
 public:
  std::shared_ptr<PresentationController> presentationControllerFor(
      const std::shared_ptr<ViewController>& presented,
      const std::shared_ptr<ViewController>& presenting,
      const std::shared_ptr<ViewController>& source) override;
};

/// Configures `screen` to be presented as a card. Keep the result for as long as the screen is
/// presented: a screen does not own its delegate.
std::shared_ptr<OXTransitioningDelegate> presentAsCard(ViewController& screen);

}  // namespace orlix
