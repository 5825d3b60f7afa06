// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ui/PresentationController.h"

namespace orlix {

/// Presents a screen as a card of fixed size in the middle of the dimmed host screen.
class OXPresentationController : public PresentationController {
 public:
  OXPresentationController(const std::shared_ptr<ViewController>& presented,
                           const std::shared_ptr<ViewController>& presenting);

  void prepareDimmingView();
  void presentationTransitionWillBegin() override;
  void dismissalTransitionWillBegin() override;
  /// The same for every container.
  Size sizeForChildContentContainer(Size parentContainerSize) const;
  Rect frameOfPresentedViewInContainerView() const override;
  bool shouldAutorotate() const override { return false; }

  const std::shared_ptr<View>& dimmingView() const { return dimmingView_; }

 private:
  std::shared_ptr<View> dimmingView_;
};

}  // namespace orlix
