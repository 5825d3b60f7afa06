// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/Payment.h"

#include <chrono>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

constexpr Duration kRound = 60s;
constexpr Duration kLongestPause = 2s;

/// Asks for the purchase and notes what is known of it, here in the background: the host may have
/// heard that the user has left before the answer reaches the main queue.
MTPinResponse noted(PurchaseAttempt& attempt, const KCVelloConnection& connection,
                    const std::function<MTPinResponse(KCVelloConnection&)>& purchase) {
  RequestScope scope = connection.scope();
  scope.departure = attempt.departure();
  KCVelloConnection client = connection.within(scope);
  MTPinResponse response = purchase(client);
  attempt.answered(response);
  return response;
}

}  // namespace

void Payment::pay(PurchaseCall purchase, Task again) {
  screen_.showProgress(status_);
  const auto session = screen_.session();
  if (!session) {
    return;
  }
  attempt_ = session->purchases()->begin();
  requestInBackground<MTPinResponse>(
      queue_,
      [attempt = attempt_, purchase = std::move(purchase)](KCVelloConnection& connection) {
        return noted(*attempt, connection, purchase);
      },
      [self = self()](MTPinResponse response) {
        self->pinResponse_ = std::move(response);
        self->purchaseEnded();
      },
      [self = self(), again = std::move(again)] { self->offerRetryOf(again); }, session);
}

void Payment::purchaseEnded() {
  purchaseAnswered();
  if (pinResponse_.status == PinResponseStatus::success) {
    pollForReceipt();
  } else {
    endWith([](OXSession& session) { session.returnError(2); });
  }
}

void Payment::pollForReceipt() {
  if (!OXUtil::indicator().isShownFor(screen_)) {
    screen_.showProgress(status_);
  }
  const auto session = screen_.session();
  if (!session) {
    return;
  }
  requestInBackground<std::optional<MTReceipt>>(
      RequestQueue::newOperationQueue,
      [transactionId = pinResponse_.transactionId](KCVelloConnection& connection) {
        return receiptOf(transactionId, connection);
      },
      [self = self()](std::optional<MTReceipt> receipt) {
        self->receipt_ = std::move(receipt);
        self->receiptArrived();
      },
      [self = self()] { self->offerRetryOf([self] { self->pollForReceipt(); }); }, session);
}

std::optional<MTReceipt> Payment::receiptOf(std::int64_t transactionId,
                                            const KCVelloConnection& connection) {
  RequestScope scope = connection.scope();
  // The deadline also ends the re-sending of a poll that the server keeps refusing.
  scope.deadline = Host::current().ports().clock->steadyNow() + kRound;
  KCVelloConnection client = connection.within(scope);
  while (!scope.isOver()) {
    log("Polling for receipt...");
    try {
      std::optional<MTReceipt> receipt = client.pollForReceipt(transactionId);
      if (receipt && receipt->hasStatus) {
        return receipt;
      }
    } catch (const RequestEnded&) {
      break;
    }
    scope.pause(kLongestPause);
  }
  if (!connection.scope().isOver()) {
    log("Receipt polling timed out after 60 seconds.");
  }
  return std::nullopt;
}

void Payment::receiptArrived() {
  if (!receipt_) {
    receiptTimedOut();
    return;
  }
  noteReceipt();
  if (!screen_.hideProgress()) {
    return;
  }
  const std::string reference = std::to_string(pinResponse_.transactionId);
  if (receipt_->status == "SUCCESS") {
    succeeded(reference);
  } else {
    screen_.session()->returnPaymentFailedWithTransactionReference(reference);
  }
}

/// Before anything that runs the host's code.
void Payment::noteReceipt() {
  if (receipt_->status == "SUCCESS") {
    noteSuccess(*attempt_);
  } else {
    attempt_->refusedByReceipt();
  }
}

void Payment::succeeded(const std::string& reference) {
  screen_.session()->returnPaymentSucceededWithTransactionReference(reference);
}

void Payment::endWith(const std::function<void(OXSession&)>& outcome) {
  if (screen_.hideProgress()) {
    outcome(*screen_.session());
  }
}

void Payment::offerRetryOf(Task step) {
  if (!screen_.hideProgress()) {
    return;
  }
  ConnectionAlert alert = failureAlert();
  alert.retry = std::move(step);
  alert.ofPayment = true;
  OXUtil::showConnectionAlert(std::move(alert));
}

}  // namespace orlix
