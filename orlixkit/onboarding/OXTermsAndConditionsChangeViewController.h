// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/checkout/OrlixViewController.h"

namespace orlix {

/// Asks the user to accept changed terms.
class OXTermsAndConditionsChangeViewController : public OrlixViewController {
 public:
  OXTermsAndConditionsChangeViewController();
  void viewDidLoad() override;
  void prepareForSegue(const std::string& name,
                       const std::shared_ptr<ViewController>& destination) override;

  /// Reports the acceptance to the server, blocking the main thread, then requests the payment
  /// screen. Exceptions of the request propagate to the caller, and the screen stays.
  static void proceedAction(OXSession& current);

 private:
  std::shared_ptr<Label> descriptionLabel_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> declineButton_;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
};

}  // namespace orlix
