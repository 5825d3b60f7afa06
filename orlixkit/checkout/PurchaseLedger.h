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

/// One purchase (or authentication) from before it is sent, and what has become of it.
///
/// Thread: any. Nothing here allocates but `status`: a note that failed for want of memory would
/// make an accepted purchase look like one to be sent again.
class PurchaseAttempt {
 public:
  /// To be marked by the request on its way.
  const std::shared_ptr<Departure>& departure() const { return departure_; }
  void answered(const MTPinResponse& response);
  void refusedByReceipt() { settle(PurchaseState::refused); }
  void succeeded() { settle(PurchaseState::paid); }
  /// It was not the purchase itself, and leaves nothing open.
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

/// The purchases of one flow, in the order in which the user made them. Outlives the flow, so that
/// the host can ask after the outcome. Main thread.
class PurchaseLedger {
 public:
  std::shared_ptr<PurchaseAttempt> begin();
  PurchaseStatus status() const;

 private:
  std::vector<std::shared_ptr<PurchaseAttempt>> attempts_;
};

}  // namespace orlix
