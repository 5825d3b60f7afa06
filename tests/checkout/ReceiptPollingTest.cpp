// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/Payment.h"
#include "orlixkit/protocol/OMVello.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// A phone with an open session, and what a round of polling ended in.
struct Poller {
  Phone phone;
  std::string end;

  Poller() {
    OMVello::sharedOMVello().initSessionWithLibKey("key", kTestSystem, nullptr);
    phone.host.runUntilIdle();
  }
  void begin() {
    requestInBackground<std::optional<MTReceipt>>(
        RequestQueue::newOperationQueue,
        [](KCVelloConnection& connection) { return Payment::receiptOf(42, connection); },
        [this](const std::optional<MTReceipt>& receipt) {
          end = receipt ? "answered " + receipt->status.value_or("(none)") : "timed out";
        },
        [this] { end = "failed"; });
  }
  Duration runToEnd() {
    const SteadyTime begun = phone.host.clock().steadyNow();
    phone.host.runUntil([this] { return !end.empty(); });
    return phone.host.clock().steadyNow() - begun;
  }
  std::size_t polls() const { return phone.wallet.asked("/receipt/poll/"); }
};

}  // namespace

TEST(ReceiptPolling, PollsAtOnceAndEveryTwoSecondsUntilAStatusComes) {
  for (const auto& [empty, takes] :
       std::vector<std::pair<int, Duration>>{{0, 0s}, {2, 4s}, {29, 58s}}) {
    Poller poller;
    for (int i = 0; i < empty; ++i) {
      // Without a body, without a status, in turn: neither is a receipt.
      poller.phone.wallet.next("/receipt/poll/", ok(i % 2 == 0 ? "" : "{}"));
    }
    poller.begin();
    EXPECT_EQ(poller.runToEnd(), takes) << empty;
    EXPECT_EQ(poller.end, "answered SUCCESS");
    EXPECT_EQ(poller.polls(), static_cast<std::size_t>(empty) + 1);
  }
}

TEST(ReceiptPolling, StopsAtTheDeadlineEvenWhenEachPollIsSlow) {
  struct Case {
    Duration each;
    std::size_t polls;
    Duration takes;
  };
  for (const Case& row : std::vector<Case>{
           {0s, 30, 60s}, {1s, 20, 60s}, {7s, 7, 61s}, {30s, 2, 62s}, {59s, 1, 60s}}) {
    SCOPED_TRACE(row.polls);
    Poller poller;
    poller.phone.wallet.always("/receipt/poll/", late(row.each, "{}"));
    poller.begin();
    EXPECT_EQ(poller.runToEnd(), row.takes);
    EXPECT_EQ(poller.end, "timed out");
    EXPECT_EQ(poller.polls(), row.polls);
    EXPECT_TRUE(poller.phone.host.log().contains("Receipt polling timed out after 60 seconds."));
  }
}

}  // namespace orlix::test
