// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "examples/shop/EventLines.h"
#include "orlixkit/checkout/OXDelegates.h"

namespace orlix::shop {

/// How a flow ended.
struct Outcome {
  std::string callback;
  OutcomeArgument argument;

  /// Reference or error code as text; none when the callback carries nothing.
  std::optional<std::string> argumentText() const;
  /// For messages: the callback and, if any, its argument.
  std::string shown() const;
};

/// The host's delegate: reports each outcome and keeps it for the script. Main thread only.
class Outcomes : public OXOrlixDelegate {
 public:
  explicit Outcomes(EventLines& events) : events_(events) {}

  /// Called with each outcome; may be empty.
  std::function<void(const Outcome&)> onOutcome;

  /// The earliest outcome that has not been taken yet.
  std::optional<Outcome> take();
  const std::deque<Outcome>& notTaken() const { return notTaken_; }

  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override;
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override;
  void orlixError(int code) override;
  void orlixUserDidCancel() override;
  void orlixUserRegistered() override;
  void orlixUserCompletedWallet() override;
  void orlixInvalidCode() override;

 private:
  void came(const std::string& callback, OutcomeArgument argument = {});

  EventLines& events_;
  std::deque<Outcome> notTaken_;
};

}  // namespace orlix::shop
