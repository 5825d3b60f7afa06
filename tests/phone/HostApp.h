// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/checkout/OXOrlix.h"

namespace orlix::test {

using Heard = std::vector<std::string>;

/// "unknown 77", "refused, the PIN", …
inline std::string inWords(const PurchaseStatus& status) {
  const std::vector<std::string> states{"none", "unknown", "refused", "paid"};
  return states[static_cast<std::size_t>(status.state)] +
         (status.reference ? " " + *status.reference : "") + (status.pinRefused ? ", the PIN" : "");
}

/// The host application: records its callbacks.
class HostApp : public OXOrlixDelegate, public OX3DSecureOrlixDelegate {
 public:
  Heard heard;
  /// Runs at each callback.
  std::function<void()> onOutcome;

  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    hear("succeeded " + reference);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    hear("failed " + reference);
  }
  void orlixError(int code) override { hear("error " + std::to_string(code)); }
  void orlixUserDidCancel() override { hear("cancelled"); }
  void orlixUserRegistered() override { hear("registered"); }
  void orlixUserCompletedWallet() override { hear("wallet done"); }
  void orlixInvalidCode() override { hear("invalid code"); }
  void auth3DsValidated() override { hear("validated"); }

 private:
  void hear(std::string what) {
    heard.push_back(std::move(what));
    if (onOutcome) {
      onOutcome();
    }
  }
};

}  // namespace orlix::test
