// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "orlixkit/checkout/PurchaseStatus.h"
#include "orlixkit/protocol/Departure.h"
#include "orlixkit/records/MTPinResponse.h"

namespace orlix {

/// One purchase (or authentication) and its result, recorded from before it is sent.
///
/// Thread: any. Only `status` allocates: a record lost for lack of memory would make an accepted
/// purchase look unsent.
class PurchaseAttempt {
 public:
  /// Marked by the request when it leaves the device.
  const std::shared_ptr<Departure>& departure() const { return departure_; }
  void answered(const MTPinResponse& response);
  void refusedByReceipt() { settle(PurchaseState::refused); }
  void succeeded() { settle(PurchaseState::paid); }
  /// Call when the request was not the purchase itself and no result is pending.
  void authenticated() { settle(PurchaseState::none); }

  PurchaseStatus status() const;

 private:
  void settle(PurchaseState end);

  const std::shared_ptr<Departure> departure_ = std::make_shared<Departure>();
  mutable std::mutex lock_;
  std::optional<PurchaseState> end_;  ///< none while it is open
  std::optional<std::int64_t> transactionId_;
  bool pinRefused_ = false;
};

/// The purchases of one flow, in order. Outlives the flow, so that the host can query it after the
/// outcome. Main thread.
class PurchaseLedger {
 public:
  std::shared_ptr<PurchaseAttempt> begin();
  PurchaseStatus status() const;

 private:
  std::vector<std::shared_ptr<PurchaseAttempt>> attempts_;
};

}  // namespace orlix
