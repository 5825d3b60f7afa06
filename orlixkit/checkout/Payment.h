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

/// The part of a screen that pays: sends the purchase, polls for its receipt and ends the flow with
/// the outcome. A step that fails is offered again in the connection alert.
///
/// The observer of the progress indicator and the alerts is the host's code and may end the flow;
/// the session is asked for again after each of them.
///
/// Main thread. Requests and alerts under way keep the screen alive.
class Payment {
 public:
  virtual ~Payment() = default;

  /// Begins a round of polling for the receipt of `pinResponse_`.
  void pollForReceipt();

  /// One round of polling: at once, then after pauses of at most 2 seconds, and no more once 60
  /// seconds have passed. None at the deadline, with a log line, and when the flow of `connection`
  /// is over. Blocks. Throws what a request throws.
  static std::optional<MTReceipt> receiptOf(std::int64_t transactionId,
                                            const KCVelloConnection& connection);

 protected:
  using PurchaseCall = std::function<MTPinResponse(KCVelloConnection&)>;

  /// `screen`: the screen that this is a part of. `status`: of the indicator meanwhile. `queue`:
  /// where the purchase is sent from.
  Payment(SessionScreen& screen, std::string status, RequestQueue queue)
      : screen_(screen), status_(std::move(status)), queue_(queue) {}

  /// Sends the purchase. `again` makes and sends it once more, when the user retries.
  void pay(PurchaseCall purchase, Task again);
  /// Hides the indicator and shows the connection alert for a step that has failed.
  void offerRetryOf(Task step);
  /// Dismisses the indicator, then ends the flow.
  void endWith(const std::function<void(OXSession&)>& outcome);

  /// What the alert does besides the retry.
  virtual ConnectionAlert failureAlert() = 0;
  /// The purchase will not be sent again.
  virtual void purchaseAnswered() {}
  /// A round of polling has brought no receipt.
  virtual void receiptTimedOut() = 0;
  /// The receipt says "SUCCESS". The session is live, the indicator gone.
  virtual void succeeded(const std::string& reference);
  /// What that means for the purchase that was sent.
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
