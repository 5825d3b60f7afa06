#include <gtest/gtest.h>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/ReceiptPolling.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

using namespace std::chrono_literals;

/// A phone with an open session, and what a round of polling ended in.
struct Poller {
  Phone phone;
  std::string end;

  Poller() {
    OMVello::sharedOMVello().initSessionWithLibKey("key", kTestSystem, nullptr);
    phone.host.runUntilIdle();
  }
  void begin() {
    pollForReceipt(42, {[this](const MTReceipt& receipt) {
                          end = "answered " + receipt.status.value_or("(none)");
                        },
                        [this] { end = "timed out"; }, [this] { end = "failed"; }});
  }
  Duration runToEnd() {
    const SteadyTime begun = phone.host.clock().steadyNow();
    phone.host.runUntil([this] { return !end.empty(); });
    return phone.host.clock().steadyNow() - begun;
  }
  std::size_t polls() const { return phone.wallet.asked("/receipt/poll/"); }
};

ServerReply slow(Duration span, const std::string& body) {
  return ServerReply().after(span).status(200).body(body);
}

}  // namespace

TEST(ReceiptPolling, PollsAtOnceAndEveryTwoSecondsUntilAStatusComes) {
  struct Case {
    std::string name;
    int emptyAnswers;
    Duration takes;
  };
  for (const Case& row :
       std::vector<Case>{{"at once", 0, 0s}, {"third", 2, 4s}, {"last", 29, 58s}}) {
    SCOPED_TRACE(row.name);
    Poller poller;
    for (int i = 0; i < row.emptyAnswers; ++i) {
      // Without a body, without a status, in turn: neither is a receipt.
      poller.phone.wallet.next("/receipt/poll/", ServerReply::of(200, i % 2 == 0 ? "" : "{}"));
    }
    poller.begin();
    EXPECT_EQ(poller.runToEnd(), row.takes);
    EXPECT_EQ(poller.end, "answered SUCCESS");
    EXPECT_EQ(poller.polls(), static_cast<std::size_t>(row.emptyAnswers) + 1);
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
    SCOPED_TRACE(std::chrono::duration<double>(row.each).count());
    Poller poller;
    poller.phone.wallet.always("/receipt/poll/", slow(row.each, "{}"));
    poller.begin();
    EXPECT_EQ(poller.runToEnd(), row.takes);
    EXPECT_EQ(poller.end, "timed out");
    EXPECT_EQ(poller.polls(), row.polls);
  }
}

TEST(ReceiptPolling, AFailingPollEndsTheRound) {
  for (const ServerReply& reply : {ServerReply::of(500), ServerReply::of(200, "<html>"),
                                   ServerReply().fail("gone"), ServerReply().silence()}) {
    Poller poller;
    poller.phone.wallet.next("/receipt/poll/", ServerReply::of(200, "{}"));
    poller.phone.wallet.next("/receipt/poll/", reply);
    poller.begin();
    poller.runToEnd();
    EXPECT_EQ(poller.end, "failed");
    EXPECT_EQ(poller.polls(), 2U);
  }
}

TEST(ReceiptPolling, WithoutAClientTheRoundFails) {
  Phone phone;
  std::string end;
  pollForReceipt(1, {[&](const MTReceipt&) { end = "answered"; }, [&] { end = "timed out"; },
                     [&] { end = "failed"; }});
  phone.host.runUntilIdle();
  EXPECT_EQ(end, "failed");
}

TEST(ReceiptPolling, EndsWithoutAWordWhenTheSessionIsOver) {
  Poller poller;
  poller.phone.wallet.receipt = "{}";
  poller.begin();
  poller.phone.host.runFor(5s);
  const std::size_t polls = poller.polls();
  OXSession::reset();
  poller.phone.host.runFor(120s);
  EXPECT_EQ(poller.end, "");
  EXPECT_EQ(poller.polls(), polls);
}

}  // namespace orlix::test
