// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/ui/TextField.h"

namespace orlix {

/// Second screen of the enrolment: accepts the code received by SMS and, on success, resumes the
/// interrupted flow.
class OXActivationCodeViewController : public OrlixViewController {
 public:
  OXActivationCodeViewController();
  void viewDidLoad() override;
  void prepareForSegue(const std::string& name,
                       const std::shared_ptr<ViewController>& destination) override;

  /// Sends the code as typed. Also called by the network alert's retry.
  void proceedAction();
  /// Handles the server's answer, an SmsResponseStatus: 1 and 3 are refusals, all others successes.
  void answered(std::int32_t status);

 private:
  std::shared_ptr<Label> infoLabel_;
  std::shared_ptr<TextField> codeField_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> cancelButton_;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
};

}  // namespace orlix
