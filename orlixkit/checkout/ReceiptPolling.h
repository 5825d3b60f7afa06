#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/records/MTReceipt.h"

namespace orlix {

/// What a round of polling ends in; exactly one of them runs, on the main queue, and only while the
/// session that was current at the call is live.
struct ReceiptPollingEnds {
  std::function<void(const MTReceipt&)> answered;  ///< a receipt with a status
  Task timedOut;                                   ///< none within 60 seconds
  Task failed;                                     ///< a request failed
};

/// Asks for the receipt of a transaction on a background queue of its own: at once, then after
/// pauses of at most 2 seconds, and no more once 60 seconds have passed. Ends early, without a
/// word, at the host's shutdown or when the session is over.
void pollForReceipt(std::int64_t transactionId, ReceiptPollingEnds ends);

}  // namespace orlix
