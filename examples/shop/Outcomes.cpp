// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/Outcomes.h"

namespace orlix::shop {

std::optional<std::string> Outcome::argumentText() const {
  if (const auto* reference = std::get_if<std::string>(&argument)) {
    return *reference;
  }
  if (const auto* code = std::get_if<int>(&argument)) {
    return std::to_string(*code);
  }
  return std::nullopt;
}

std::string Outcome::shown() const {
  const std::optional<std::string> text = argumentText();
  return text ? callback + " " + *text : callback;
}

std::optional<Outcome> Outcomes::take() {
  if (notTaken_.empty()) {
    return std::nullopt;
  }
  Outcome first = std::move(notTaken_.front());
  notTaken_.pop_front();
  return first;
}

void Outcomes::orlixPaymentSucceededWithTransactionReference(const std::string& reference) {
  came("orlixPaymentSucceededWithTransactionReference", reference);
}

void Outcomes::orlixPaymentFailedWithTransactionReference(const std::string& reference) {
  came("orlixPaymentFailedWithTransactionReference", reference);
}

void Outcomes::orlixError(int code) { came("orlixError", code); }
void Outcomes::orlixUserDidCancel() { came("orlixUserDidCancel"); }
void Outcomes::orlixUserRegistered() { came("orlixUserRegistered"); }
void Outcomes::orlixUserCompletedWallet() { came("orlixUserCompletedWallet"); }
void Outcomes::orlixInvalidCode() { came("orlixInvalidCode"); }

void Outcomes::came(const std::string& callback, OutcomeArgument argument) {
  events_.outcome(callback, argument);
  notTaken_.push_back({callback, std::move(argument)});
  if (onOutcome) {
    onOutcome(notTaken_.back());
  }
}

}  // namespace orlix::shop
