#include "orlixkit/checkout/ReceiptPolling.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <utility>

#include "orlixkit/checkout/WalletRequest.h"
#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

constexpr Duration kRound = 60s;
constexpr Duration kLongestPause = 2s;

enum class RoundEnd { answered, timedOut, failed, abandoned };

/// One round of polling. Its ends hold the screen, and are let go of on the main thread.
struct PollingRound {
  std::int64_t transactionId = 0;
  ReceiptPollingEnds ends;
  std::shared_ptr<OXSession> session = OXSession::currentSession();
  std::shared_ptr<KCVelloConnection> connection = OMVello::sharedOMVello().connection();
  std::optional<MTReceipt> receipt;
  RoundEnd end = RoundEnd::failed;

  bool answered() const { return receipt && receipt->hasStatus; }

  RoundEnd poll() {
    if (!connection) {
      return RoundEnd::failed;
    }
    Clock& clock = *Host::current().ports().clock;
    const SteadyTime deadline = clock.steadyNow() + kRound;
    // The deadline also ends the re-sending of a poll that the server keeps refusing.
    KCVelloConnection client = connection->within({.flow = session->flow(), .deadline = deadline});
    while (clock.steadyNow() < deadline) {
      if (!session->isLive()) {
        return RoundEnd::abandoned;
      }
      log("Polling for receipt...");
      try {
        receipt = client.pollForReceipt(transactionId);
      } catch (const RequestEnded&) {
        break;
      }
      if (answered()) {
        return RoundEnd::answered;
      }
      const Duration left = deadline - clock.steadyNow();
      if (left > Duration::zero() && !clock.sleep(std::min(kLongestPause, left))) {
        return RoundEnd::abandoned;
      }
    }
    if (!session->isLive()) {
      return RoundEnd::abandoned;
    }
    log("Receipt polling timed out after 60 seconds.");
    return RoundEnd::timedOut;
  }

  void run() {
    try {
      end = poll();
    } catch (const std::exception&) {
      end = RoundEnd::failed;
    }
    connection.reset();
  }

  void finish() {
    const ReceiptPollingEnds handlers = std::exchange(ends, {});
    if (!std::exchange(session, {})->isLive()) {
      return;
    }
    switch (end) {
      case RoundEnd::answered:
        handlers.answered(*receipt);
        break;
      case RoundEnd::timedOut:
        handlers.timedOut();
        break;
      case RoundEnd::failed:
        handlers.failed();
        break;
      case RoundEnd::abandoned:
        break;
    }
  }
};

}  // namespace

void pollForReceipt(std::int64_t transactionId, ReceiptPollingEnds ends) {
  const auto round = std::make_shared<PollingRound>();
  round->transactionId = transactionId;
  round->ends = std::move(ends);
  runInBackground(
      RequestQueue::newOperationQueue, [round] { round->run(); }, [round] { round->finish(); });
}

}  // namespace orlix
