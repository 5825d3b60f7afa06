// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/PurchaseLedger.h"

#include <string>

namespace orlix {

namespace {

/// The more it says about money, the higher: of several purchases the highest counts.
int weight(PurchaseState state) {
  switch (state) {
    case PurchaseState::paid:
      return 3;
    case PurchaseState::unknown:
      return 2;
    case PurchaseState::refused:
      return 1;
    case PurchaseState::none:
      break;
  }
  return 0;
}

}  // namespace

void PurchaseAttempt::answered(const MTPinResponse& response) {
  const std::lock_guard held(lock_);
  if (response.hasTransactionId) {
    transactionId_ = response.transactionId;
  }
  pinRefused_ = response.status == PinResponseStatus::invalidPassword;
  // An absent status, or one of a later protocol, refuses nothing.
  if (pinRefused_ || response.status == PinResponseStatus::error) {
    end_ = PurchaseState::refused;
  }
}

void PurchaseAttempt::settle(PurchaseState end) {
  const std::lock_guard held(lock_);
  end_ = end;
}

PurchaseStatus PurchaseAttempt::status() const {
  const Departure::State departure = departure_->state();
  if (departure == Departure::State::notSent) {
    return {};
  }
  const std::lock_guard held(lock_);
  const auto open =
      departure == Departure::State::turnedAway ? PurchaseState::refused : PurchaseState::unknown;
  PurchaseStatus status{end_.value_or(open), std::nullopt, pinRefused_};
  if (transactionId_ && status.state != PurchaseState::none) {
    status.reference = std::to_string(*transactionId_);
  }
  return status;
}

std::shared_ptr<PurchaseAttempt> PurchaseLedger::begin() {
  return attempts_.emplace_back(std::make_shared<PurchaseAttempt>());
}

PurchaseStatus PurchaseLedger::status() const {
  PurchaseStatus whole;
  for (const auto& attempt : attempts_) {
    PurchaseStatus newer = attempt->status();
    if (weight(newer.state) < weight(whole.state)) {
      continue;
    }
    if (newer.state == whole.state && !newer.reference) {
      newer.reference = std::move(whole.reference);
    }
    whole = std::move(newer);
  }
  return whole;
}

}  // namespace orlix
