#pragma once

#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

/// Presents every screen of the library as a card over the dimmed host screen.
class OXTransitioningDelegate : public TransitioningDelegate {
 public:
  std::shared_ptr<PresentationController> presentationControllerFor(
      const std::shared_ptr<ViewController>& presented,
      const std::shared_ptr<ViewController>& presenting,
      const std::shared_ptr<ViewController>& source) override;
};

}  // namespace orlix
