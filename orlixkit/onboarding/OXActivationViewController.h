// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/records/MTSmsResponse.h"
#include "orlixkit/ui/TextField.h"

namespace orlix {

/// First screen of the enrolment of a device: asks for the mobile number and requests an SMS code
/// for it.
class OXActivationViewController : public OrlixViewController, public TextFieldDelegate {
 public:
  OXActivationViewController();
  ~OXActivationViewController() override;
  OXActivationViewController(const OXActivationViewController&) = delete;
  OXActivationViewController& operator=(const OXActivationViewController&) = delete;

  void viewDidLoad() override;
  void prepareForSegue(const std::string& name,
                       const std::shared_ptr<ViewController>& destination) override;
  /// Of the country code: opens the list of codes instead.
  bool textFieldShouldBeginEditing(TextField& field) override;

  /// Called by the list of countries: digits without "+".
  void changeCountryCode(const std::string& code);
  /// Sets the country code to that of an international number; ignores other numbers.
  void getCountryCode(const std::string& number);
  /// Proceeds. Also called by the network alert's retry.
  void sendMsisdn();

 private:
  void ask(const std::string& msisdn);
  void answered(const MTSmsResponse& response);
  std::shared_ptr<OXActivationViewController> self();

  std::shared_ptr<TextField> countryCodeField_;
  std::shared_ptr<TextField> msisdnField_;
  std::shared_ptr<Label> descriptionLabel_;
  std::shared_ptr<Button> proceedButton_;
  std::shared_ptr<Button> cancelButton_;
  std::shared_ptr<OXTransitioningDelegate> transitioningDelegate_;
};

}  // namespace orlix
