// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/ui/Application.h"

namespace orlix::bench {

/// The whole library over the real ports, with a user who pays by PIN as soon as he can.
class CheckoutRun : public UiObserver {
 public:
  /// Installs the host. `state`: a folder for the store.
  CheckoutRun(const std::string& base, const std::string& anchor, const std::string& state);
  ~CheckoutRun() override;

  /// One checkout of the code "FIXED-25", from the call to the host's callback. Throws
  /// std::runtime_error when it ends in anything but a payment.
  void pay();

  void didPresent(const std::shared_ptr<ViewController>& screen) override;

 private:
  class Outcome;
  std::shared_ptr<ViewController> window_ = std::make_shared<ViewController>();
};

}  // namespace orlix::bench
