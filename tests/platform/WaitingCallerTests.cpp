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
      : RecordingDelegate(queue), condition(clock.newCondition()), time(clock) {}

  void didReceiveResponse(std::int64_t statusCode) override {
    callbackThread = std::this_thread::get_id();
    RecordingDelegate::didReceiveResponse(statusCode);
  }
  void didFinishLoading() override {
    events.emplace_back("finish");
    end();
  }
  void end() {
    condition->lock();
    over = true;
    condition->unlock();
    condition->signal();
  }
  /// What the last wait returned.
  bool wait(Duration duration) {
    const SteadyTime deadline = time.steadyNow() + duration;
    bool woken = true;
    condition->lock();
    while (!over && woken) {
      woken = condition->waitUntil(deadline);
    }
    condition->unlock();
    return woken;
  }

  const std::unique_ptr<Condition> condition;
  Clock& time;
  bool over = false;  // guarded by the condition
  std::thread::id callbackThread;
};

class WaitingCallerTest : public HttpsFixture {
 protected:
  std::shared_ptr<Call> newCall() {
    return std::make_shared<Call>(platform.mainQueue(), platform.clock());
  }
  /// Whether the calling thread did the exchange's work itself. The queue: a new one when null.
  bool call(const TlsServer& server, const std::shared_ptr<OperationQueue>& queue = nullptr) {
    const auto one = newCall();
    const auto connection = connections.newConnection(post(server.address("/")), one);
    connection->setDelegateQueue(queue ? queue : platform.backgroundQueues().newOperationQueue());
    connection->start();
    EXPECT_TRUE(one->wait(longWait));
    EXPECT_EQ(one->events, (Events{"response 200", "data", "finish"}));
    return one->callbackThread == std::this_thread::get_id();
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
      const auto caller = [&](const TlsServer& server) { return [&] { call(server, queue); }; };
      EXPECT_LT(timed([&] {
                  inBackground({caller(first), caller(second), caller(first), caller(second)});
                }),
                longWait / 2);
    }
  }
}

TEST_F(WaitingCallerTest, ASignalFromElsewhereOrTheDeadlineEndsTheWaitAtOnceAndACancelHangsUp) {
  TlsServer server(serverIdentity(), silentAfter("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n"));
  int driving = 0;
  for (int round = 1; round <= 10; ++round) {
    const bool signalled = round > 1;
    const auto one = newCall();
    std::chrono::steady_clock::time_point due;
    one->onResponse = [&, watched = std::weak_ptr(one)] {
      if (signalled) {
        platform.backgroundQueues().global(QualityOfService::high, [&, self = watched.lock()] {
          due = std::chrono::steady_clock::now();
          self->end();
        });
      }
    };
    inBackground({[&] {
      const auto connection = start(post(server.address("/")), one);
      if (!signalled) {
        due = std::chrono::steady_clock::now() + std::chrono::milliseconds(80);
      }
      EXPECT_EQ(one->wait(signalled ? Duration(longWait) : std::chrono::milliseconds(80)),
                signalled);
      const auto late = std::chrono::steady_clock::now() - due;
      EXPECT_GE(late, Duration(0));
      EXPECT_LT(late, promptly);
      driving += one->callbackThread == std::this_thread::get_id() ? 1 : 0;
      EXPECT_LT(timed([&] {
                  connection->cancel();
                  server.awaitEnded(round);
                }),
                promptly);
    }});
    EXPECT_EQ(one->events, (Events{"response 200"}));
  }
  EXPECT_GT(driving, 0) << "it must have happened to a caller that drives";
}

}  // namespace

}  // namespace orlix
