#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/platform/ui/TextField.h"

namespace orlix {

/// Second screen of the enrolment: takes the code that came by SMS, and on success lets the
/// interrupted flow go on.
class OXActivationCodeViewController : public OrlixViewController {
 public:
  OXActivationCodeViewController();
  void viewDidLoad() override;
  void prepareForSegue(const std::string& name,
                       const std::shared_ptr<ViewController>& destination) override;

  /// Sends the code as it was typed. What the network alert's retry calls, too.
  void proceedAction();
  void cancelAction();
  /// The server's answer, as SmsResponseStatus: 1 and 3 are refusals, everything else is a success.
  void answered(std::int32_t status);

 private:
  std::shared_ptr<Label> infoLabel_;
  std::shared_ptr<TextField> codeField_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> cancelButton_;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
};

}  // namespace orlix
