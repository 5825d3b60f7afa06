// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ui/Geometry.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Frame and appearance of a presented controller over its presenter.
class PresentationController {
 public:
  PresentationController(const std::shared_ptr<ViewController>& presented,
                         const std::shared_ptr<ViewController>& presenting);
  virtual ~PresentationController() = default;

  virtual void presentationTransitionWillBegin() {}
  virtual void dismissalTransitionWillBegin() {}
  virtual Rect frameOfPresentedViewInContainerView() const;
  virtual bool shouldAutorotate() const { return true; }

  /// Fills the window for as long as the presentation lasts; holds what is drawn around the screen.
  const std::shared_ptr<View>& containerView() const { return containerView_; }
  std::shared_ptr<ViewController> presentedViewController() const { return presented_.lock(); }
  std::shared_ptr<ViewController> presentingViewController() const { return presenting_.lock(); }

 private:
  std::shared_ptr<View> containerView_;
  std::weak_ptr<ViewController> presented_;
  std::weak_ptr<ViewController> presenting_;
};

}  // namespace orlix
