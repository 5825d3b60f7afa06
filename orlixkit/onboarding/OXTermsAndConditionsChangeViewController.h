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

  void descriptionTapped();
  /// Tells the server on the main thread, which waits meanwhile, then asks for the payment screen.
  /// A failure of the request travels up to the caller, and the user stays here.
  void proceedAction();
  void declineAction();

 private:
  std::shared_ptr<Label> descriptionLabel_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> declineButton_;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
};

}  // namespace orlix
