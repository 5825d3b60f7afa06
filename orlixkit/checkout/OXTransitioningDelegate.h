// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Presents every screen of the library as a card over the dimmed host screen.
class OXTransitioningDelegate : public TransitioningDelegate {
 public:
  std::shared_ptr<PresentationController> presentationControllerFor(
      const std::shared_ptr<ViewController>& presented,
      const std::shared_ptr<ViewController>& presenting,
      const std::shared_ptr<ViewController>& source) override;
};

/// Sets `screen` up to be presented as a card. The caller keeps the result for as long as the
/// screen is presented; a screen does not hold its delegate.
std::shared_ptr<OXTransitioningDelegate> presentAsCard(ViewController& screen);

}  // namespace orlix
