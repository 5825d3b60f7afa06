// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/PurchaseLedger.h"
#include "orlixkit/checkout/SessionScreen.h"
#include "orlixkit/records/MTPinResponse.h"
#include "orlixkit/records/MTReceipt.h"
#include "orlixkit/records/PurchaseRequest.h"

namespace orlix {

/// The payment of a screen: sends the purchase, polls for its receipt and ends the flow with the
/// outcome. The connection alert offers a retry of a failed step.
///
/// The observer of progress indicator and alerts is the host's code and may end the flow, so the
/// session is looked up again after each call of it.
///
/// Main thread. Pending requests and alerts keep the screen alive.
class Payment {
 public:
  virtual ~Payment() = default;

  /// Begins a round of polling for the receipt of `pinResponse_`.
  void pollForReceipt();

  /// One round of polling: at once, then after pauses of at most 2 seconds, until 60 seconds have
  /// passed. Returns none at the deadline, with a log line, and when the flow of `connection` is
  /// over. Blocks. Throws what a request throws.
  static std::optional<MTReceipt> receiptOf(std::int64_t transactionId,
                                            const KCVelloConnection& connection);

 protected:
  using PurchaseCall = std::function<MTPinResponse(KCVelloConnection&)>;

  /// `screen`: the owner. `status`: text of the progress indicator. `queue`: where the purchase is
  /// sent from.
  Payment(SessionScreen& screen, std::string status, RequestQueue queue)
      : screen_(screen), status_(std::move(status)), queue_(queue) {}

  /// Sends the purchase. `again` builds and sends it again when the user retries.
  void pay(PurchaseCall purchase, Task again);
  /// Hides the indicator and shows the connection alert for a step that has failed.
  void offerRetryOf(Task step);
  /// Dismisses the indicator, then ends the flow.
  void endWith(const std::function<void(OXSession&)>& outcome);

  /// The alert's choices besides the retry.
  virtual ConnectionAlert failureAlert() = 0;
  /// Called when the purchase will not be sent again.
  virtual void purchaseAnswered() {}
  /// Called when a round of polling has returned no receipt.
  virtual void receiptTimedOut() = 0;
  /// Called when the receipt says "SUCCESS"; the session is live and the indicator dismissed.
  virtual void succeeded(const std::string& reference);
  /// The state of the sent purchase that follows from this receipt.
  virtual void noteSuccess(PurchaseAttempt& attempt) const { attempt.succeeded(); }

  PurchaseRequest purchaseRequest_;
  MTPinResponse pinResponse_;
  std::optional<MTReceipt> receipt_;  ///< of the last round of polling

 private:
  void purchaseEnded();
  void receiptArrived();
  void noteReceipt();
  std::shared_ptr<Payment> self() { return {screen_.shared_from_this(), this}; }

  SessionScreen& screen_;
  const std::string status_;
  const RequestQueue queue_;
  std::shared_ptr<PurchaseAttempt> attempt_;  ///< the purchase that was sent last
};

}  // namespace orlix
