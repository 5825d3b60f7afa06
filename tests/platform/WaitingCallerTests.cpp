// A caller that waits on a condition for its own exchange, as the transport does: it drives the
// exchange itself, and must still hear of everything else.

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/platform/HttpsFixture.h"

namespace orlix {

namespace {

constexpr auto promptly = std::chrono::milliseconds(500);
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
  void didFailWithError(const std::string&) override {
    events.emplace_back("fail");
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
  Events call(const std::string& url) {
    const auto one = newCall();
    start(post(url), one);
    one->wait(longWait);
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

const Events answered{"response 200", "data", "finish"};

void answerAll(TlsConnection& connection) {
  while (connection.read() && connection.write(httpAnswer(200, "", "ok"))) {
  }
}

void staySilent(TlsConnection& connection) {
  connection.read();
  connection.awaitClose();
}

}  // namespace

TEST_F(WaitingCallerTest, SavesItselfTheHandOverToOtherThreads) {
  TlsServer server(serverIdentity(), answerAll);
  int own = 0;
  inBackground({[&] {
    for (int i = 0; i < 50; ++i) {
      const auto one = newCall();
      start(post(server.address("/")), one);
      EXPECT_TRUE(one->wait(longWait));
      EXPECT_EQ(one->events, answered);
      own += one->callbackThread == std::this_thread::get_id() ? 1 : 0;
    }
  }});
  EXPECT_GT(own, 0) << "now and then the I/O thread may be faster";
  EXPECT_EQ(server.handshakes(), 1);
}

TEST_F(WaitingCallerTest, ManyCallersAtOnceAllGetTheirAnswers) {
  TlsServer server(serverIdentity(), answerAll);
  const Task caller = [&] {
    for (int i = 0; i < 15; ++i) {
      EXPECT_EQ(call(server.address("/")), answered);
    }
  };
  inBackground({caller, caller, caller, caller});
  EXPECT_LE(server.handshakes(), 8);
}

TEST_F(WaitingCallerTest, CallersThatShareAQueueDoNotStandInEachOthersWay) {
  const std::shared_ptr<OperationQueue> queue = platform.backgroundQueues().newOperationQueue();
  const auto before = std::chrono::steady_clock::now();
  for (int round = 0; round < 5; ++round) {
    // A server of its own for each round, so that each call asks for trust.
    TlsServer first(serverIdentity(), answerAll);
    TlsServer second(serverIdentity(), answerAll);
    const auto caller = [&](const TlsServer& server) {
      return [&] {
        const auto one = newCall();
        const auto connection = connections.newConnection(post(server.address("/")), one);
        connection->setDelegateQueue(queue);
        connection->start();
        EXPECT_TRUE(one->wait(longWait));
        EXPECT_EQ(one->events, answered);
      };
    };
    inBackground({caller(first), caller(second), caller(first), caller(second)});
  }
  EXPECT_LT(std::chrono::steady_clock::now() - before, longWait / 2);
}

TEST_F(WaitingCallerTest, ACallbackMayCallAndWaitItself) {
  TlsServer server(serverIdentity(), answerAll);
  Events inner;
  inBackground({[&] {
    const auto outer = newCall();
    outer->onResponse = [&] { inner = call(server.address("/inner")); };
    start(post(server.address("/outer")), outer);
    EXPECT_TRUE(outer->wait(longWait));
    EXPECT_EQ(outer->events, answered);
  }});
  EXPECT_EQ(inner, answered);
}

TEST_F(WaitingCallerTest, ASignalFromElsewhereEndsTheWaitAtOnce) {
  TlsServer server(serverIdentity(), [](TlsConnection& connection) {
    connection.read();
    connection.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
    connection.awaitClose();
  });
  int driving = 0;
  for (int round = 1; round <= 10; ++round) {
    const auto one = newCall();
    std::chrono::steady_clock::time_point signalled;
    one->onResponse = [&, watched = std::weak_ptr(one)] {
      platform.backgroundQueues().global(QualityOfService::high, [&, self = watched.lock()] {
        signalled = std::chrono::steady_clock::now();
        self->end();
      });
    };
    inBackground({[&] {
      const auto connection = start(post(server.address("/")), one);
      EXPECT_TRUE(one->wait(longWait));
      EXPECT_LT(std::chrono::steady_clock::now() - signalled, promptly);
      driving += one->callbackThread == std::this_thread::get_id() ? 1 : 0;
      connection->cancel();
      server.awaitEnded(round);
      EXPECT_LT(std::chrono::steady_clock::now() - signalled, 2 * promptly);
    }});
    EXPECT_EQ(one->events, (Events{"response 200"}));
  }
  EXPECT_GT(driving, 0) << "it must have happened to a caller that drives";
}

TEST_F(WaitingCallerTest, TheDeadlineEndsTheWaitAndACancelStillHangsUp) {
  TlsServer server(serverIdentity(), staySilent);
  inBackground({[&] {
    const auto one = newCall();
    const auto connection = start(post(server.address("/")), one);
    const SteadyTime before = platform.clock().steadyNow();
    EXPECT_FALSE(one->wait(std::chrono::milliseconds(80)));
    EXPECT_GE(platform.clock().steadyNow() - before, std::chrono::milliseconds(80));
    EXPECT_LT(platform.clock().steadyNow() - before, std::chrono::milliseconds(80) + promptly);
    connection->cancel();
    server.awaitEnded(1);
    EXPECT_LT(platform.clock().steadyNow() - before, std::chrono::milliseconds(80) + 2 * promptly);
  }});
}

TEST_F(WaitingCallerTest, CloseAndShutdownEndTheWaitInEitherOrder) {
  for (const bool connectionsFirst : {true, false}) {
    PosixPlatform own;
    TlsServer server(serverIdentity(), staySilent);
    const auto one = std::make_shared<Call>(own.mainQueue(), own.clock());
    bool waiting = false;
    bool woken = true;
    own.backgroundQueues().global(QualityOfService::high, [&] {
      const auto connection = own.urlConnections().newConnection(post(server.address("/")), one);
      connection->setDelegateQueue(own.backgroundQueues().newOperationQueue());
      connection->start();
      own.mainQueue().async([&waiting] { waiting = true; });
      woken = one->wait(longWait);
    });
    own.mainQueue().runUntil([&waiting] { return waiting; });
    const auto before = std::chrono::steady_clock::now();
    if (connectionsFirst) {
      own.urlConnections().close();
      own.backgroundQueues().close();
    } else {
      own.backgroundQueues().close();
      own.urlConnections().close();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - before, promptly);
    EXPECT_FALSE(woken);
    EXPECT_TRUE(one->events.empty());
  }
}

}  // namespace orlix
