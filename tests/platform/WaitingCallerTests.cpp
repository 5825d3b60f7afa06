// A caller that waits on a condition for its own exchange, as the transport does: it drives the
// exchange itself, and must still hear of everything else.

#include "tests/platform/HttpsFixture.h"

namespace orlix {

namespace {

constexpr auto longWait = std::chrono::seconds(60);

/// One exchange and the caller that waits for its end.
class Call : public RecordingDelegate {
 public:
  Call(MainQueue& queue, Clock& clock)
      : RecordingDelegate(queue), condition(clock.newCondition()) {}

  void didFinishLoading() override {
    events.emplace_back("finish");
    condition->lock();
    over = true;
    condition->unlock();
    condition->signal();
  }
  void waitUntil(SteadyTime deadline) {
    condition->lock();
    while (!over && condition->waitUntil(deadline)) {
    }
    condition->unlock();
  }

  const std::unique_ptr<Condition> condition;
  bool over = false;  // guarded by the condition
};

class WaitingCallerTest : public HttpsFixture {
 protected:
  const Events whole{"response 200", "data", "finish"};

  /// Makes a call and waits for its end. The queue: a new one when null.
  Events call(const TlsServer& server, const std::shared_ptr<OperationQueue>& queue = {},
              Duration patience = longWait, const Task& onResponse = {}) {
    const auto one = std::make_shared<Call>(platform.mainQueue(), platform.clock());
    one->onResponse = onResponse;
    const auto connection = connections.newConnection(post(server.address("/")), one);
    connection->setDelegateQueue(queue ? queue : platform.backgroundQueues().newOperationQueue());
    connection->start();
    one->waitUntil(platform.clock().steadyNow() + patience);
    connection->cancel();
    return one->events;
  }
  /// Runs the tasks in the background, all at once, and returns when all have ended.
  void inBackground(const std::vector<Task>& tasks) {
    std::size_t ended = 0;
    for (const Task& task : tasks) {
      platform.backgroundQueues().global(QualityOfService::high, [&, task] {
        task();
        platform.mainQueue().async([&ended] { ++ended; });
      });
    }
    platform.mainQueue().runUntil([&] { return ended == tasks.size(); });
  }
};

TEST_F(WaitingCallerTest, CallersDoNotStandInEachOthersWayThoughTheyShareAQueue) {
  const std::shared_ptr<OperationQueue> shared = platform.backgroundQueues().newOperationQueue();
  for (const auto& queue : {shared, std::shared_ptr<OperationQueue>()}) {
    for (int round = 0; round < 5; ++round) {
      // Servers of their own for each round, so that each call asks for trust.
      TlsServer first(serverIdentity(), answerAll);
      TlsServer second(serverIdentity(), answerAll);
      const auto caller = [&](const TlsServer& server) {
        return [&] { EXPECT_EQ(call(server, queue), whole); };
      };
      EXPECT_LT(timed([&] {
                  inBackground({caller(first), caller(second), caller(first), caller(second)});
                }),
                longWait / 2);
    }
  }
}

TEST_F(WaitingCallerTest, TheDeadlineEndsAWaitThatNobodySignals) {
  TlsServer mute(serverIdentity(), [](TlsConnection& connection) {
    connection.read();
    connection.awaitClose();
  });
  const Duration patience = std::chrono::milliseconds(50);
  const auto took =
      timed([&] { inBackground({[&] { EXPECT_EQ(call(mute, nullptr, patience), Events{}); }}); });
  EXPECT_GE(took, patience);
  EXPECT_LT(took, longWait / 2);
}

TEST_F(WaitingCallerTest, ACallbackMayMakeACallOfItsOwnAndWaitForIt) {
  TlsServer server(serverIdentity(), answerAll);
  Events inner;
  const auto outer = [&] {
    EXPECT_EQ(call(server, nullptr, longWait, [&] { inner = call(server); }), whole);
  };
  EXPECT_LT(timed([&] { inBackground({outer}); }), longWait / 2);
  EXPECT_EQ(inner, whole);
}

}  // namespace

}  // namespace orlix
