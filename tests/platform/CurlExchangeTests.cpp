// How an exchange goes on the wire, byte by byte: the server's end is written out by each test.

#include <algorithm>
#include <chrono>
#include <mutex>
#include <semaphore>

#include <gtest/gtest.h>

#include "tests/platform/HttpsFixture.h"

namespace orlix {

namespace {

constexpr auto promptly = std::chrono::milliseconds(500);

class CurlExchangeTest : public HttpsFixture {
 protected:
  void SetUp() override { exchange(post("https://127.0.0.1:1/")); }  // starts the thread

  std::chrono::nanoseconds timed(const Task& task) const {
    const auto before = std::chrono::steady_clock::now();
    task();
    return std::chrono::steady_clock::now() - before;
  }
};

void answerAll(TlsConnection& connection) {
  while (connection.read() && connection.write(httpAnswer(200, "", "ok"))) {
  }
}

bool hasField(const SeenRequest& request, const std::string& name) {
  return std::any_of(request.headers.begin(), request.headers.end(),
                     [&name](const auto& field) { return field.first == name; });
}

}  // namespace

TEST_F(CurlExchangeTest, ARequestIsNeverSentTwice) {
  struct Row {
    std::string name, method;
    std::optional<std::string> body;
  };
  for (const Row& row :
       {Row{"with a body", "POST", "{\"pay\": 1}"},
        Row{"with a large body", "POST", std::string(300'000, 'b')},
        Row{"without a body", "POST", std::nullopt}, Row{"a GET", "GET", std::nullopt}}) {
    SCOPED_TRACE(row.name);
    std::atomic<int> payments = 0;
    TlsServer server(serverIdentity(), [&payments](TlsConnection& connection) {
      while (const std::optional<SeenRequest> request = connection.read()) {
        if (request->path == "/pay") {
          ++payments;
          return;  // hangs up with the payment taken and no answer given
        }
        connection.write(httpAnswer(200, "", "ok"));
      }
    });
    EXPECT_EQ(exchange(post(server.address("/lookup"))).back(), "finish");
    UrlRequest request = post(server.address("/pay"));
    request.method = row.method;
    request.body.reset();
    if (row.body) {
      request.body = SecretBytes(toBytes(*row.body));
    }
    EXPECT_EQ(exchange(std::move(request)), (Events{"fail"}));
    EXPECT_EQ(delegate->error, "the server closed the connection without an answer");
    EXPECT_EQ(payments, 1);
    EXPECT_EQ(delegate->challenges, 0) << "it must have gone over the kept connection";
    EXPECT_EQ(exchange(post(server.address("/lookup"))).back(), "finish");
    EXPECT_EQ(payments, 1);
  }
}

TEST_F(CurlExchangeTest, OneHandshakeServesAllExchangesOneAfterAnother) {
  TlsServer server(serverIdentity(), answerAll);
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(exchange(post(server.address("/"))).back(), "finish");
    EXPECT_EQ(delegate->challenges, i == 0 ? 1 : 0);
  }
  EXPECT_EQ(server.handshakes(), 1);
}

TEST_F(CurlExchangeTest, AConnectionThatTheServerClosedWhileIdleIsReplacedAndJudgedAnew) {
  // The server closes only once the client has done with the answer, else it would hear of the
  // close together with it.
  std::counting_semaphore<> mayClose(0);
  TlsServer server(serverIdentity(), [&mayClose](TlsConnection& connection) {
    connection.read();
    connection.write(httpAnswer(200, "", "ok"));
    mayClose.acquire();
  });
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(exchange(post(server.address("/"))).back(), "finish") << delegate->error;
    EXPECT_EQ(delegate->challenges, 1);
    mayClose.release();
    server.awaitEnded(i);
  }
  EXPECT_EQ(server.handshakes(), 3);
}

TEST_F(CurlExchangeTest, ReadsEveryFormOfAnswerAndRefusesWhatIsNone) {
  struct Row {
    std::string name, bytes;
    Events events;
    std::string body;
  };
  const std::vector<Row> rows{
      {"chunked",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2;x=y\r\nde\r\n0\r\n\r\n",
       {"response 200", "data", "finish"},
       "abcde"},
      {"chunked with a trailer",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\nX-End: 1\r\n\r\n",
       {"response 200", "data", "finish"},
       "abc"},
      {"until the connection closes",
       "HTTP/1.0 200 OK\r\n\r\nabc",
       {"response 200", "data", "finish"},
       "abc"},
      {"after informational answers",
       "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early\r\nLink: x\r\n\r\n"
       "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok",
       {"response 200", "data", "finish"},
       "ok"},
      {"no content", "HTTP/1.1 204 None\r\n\r\n", {"response 204", "finish"}, ""},
      {"a redirect without a target",
       "HTTP/1.1 302 Found\r\nContent-Length: 2\r\n\r\nok",
       {"response 302", "data", "finish"},
       "ok"},
      {"not modified is no redirect",
       "HTTP/1.1 304 Same\r\nLocation: /elsewhere\r\n\r\n",
       {"response 304", "finish"},
       ""},
      {"a body cut short",
       "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc",
       {"response 200", "data", "fail"},
       "abc"},
      {"a chunk cut short",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nabc",
       {"response 200", "data", "fail"},
       "abc"},
      {"a chunk without a size",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\nabc\r\n",
       {"response 200", "fail"},
       ""},
      {"a header cut short", "HTTP/1.1 200 OK\r\nContent-Le", {"fail"}, ""},
      {"a negative length", "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\nabc", {"fail"}, ""},
      {"an endless header line",
       "HTTP/1.1 200 OK\r\nX: " + std::string(300'000, 'x'),
       {"fail"},
       ""},
      {"a body without a header", "hello, who is there?\r\n\r\n", {"fail"}, ""},
      {"rubbish", std::string("\x00\xFF\x17\x03\x03", 5) + std::string(64, '\x80'), {"fail"}, ""},
      {"no byte at all", "", {"fail"}, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TlsServer server(serverIdentity(), [&row](TlsConnection& connection) {
      connection.read();
      connection.write(row.bytes);
    });
    EXPECT_EQ(exchange(post(server.address("/"))), row.events) << delegate->error;
    EXPECT_EQ(delegate->body, row.body);
    EXPECT_EQ(delegate->error.empty(), row.events.back() == "finish");
    EXPECT_EQ(server.connections(), 1);
  }
}

TEST_F(CurlExchangeTest, ALargeBodyPassesOnInPieces) {
  struct Measuring : RecordingDelegate {
    using RecordingDelegate::RecordingDelegate;
    void didReceiveData(std::span<const std::uint8_t> data) override {
      total += data.size();
      largest = std::max(largest, data.size());
      intact =
          intact && std::all_of(data.begin(), data.end(), [](auto byte) { return byte == 'z'; });
    }
    std::size_t total = 0, largest = 0;
    bool intact = true;
  };
  constexpr std::size_t size = 50'000'000;
  TlsServer server(serverIdentity(), [](TlsConnection& connection) {
    connection.read();
    connection.write(httpAnswer(200, "", "").replace(37, 1, std::to_string(size)));
    const std::string piece(100'000, 'z');
    for (std::size_t sent = 0; sent < size && connection.write(piece); sent += piece.size()) {
    }
  });
  const auto measuring = std::make_shared<Measuring>(platform.mainQueue());
  start(post(server.address("/")), measuring);
  measuring->await();
  EXPECT_EQ(measuring->events.back(), "finish") << measuring->error;
  EXPECT_EQ(measuring->total, size);
  EXPECT_TRUE(measuring->intact);
  EXPECT_LE(measuring->largest, 100'000u);
}

TEST_F(CurlExchangeTest, OnlyTheContentTypeFollowsToAnotherHostAndTheTokensStayOutForGood) {
  std::mutex lock;
  std::vector<SeenRequest> seen;
  const auto note = [&](TlsConnection& connection, const std::function<std::string()>& target) {
    while (const std::optional<SeenRequest> request = connection.read()) {
      {
        const std::lock_guard guard(lock);
        seen.push_back(*request);
      }
      connection.write(request->path == "/end"
                           ? httpAnswer(200, "", "ok")
                           : httpAnswer(307, "Location: " + target() + "\r\n", "moved"));
    }
  };
  std::string back;
  std::string away;
  TlsServer other(serverIdentity(),
                  [&](TlsConnection& connection) { note(connection, [&] { return back; }); });
  TlsServer own(serverIdentity(),
                [&](TlsConnection& connection) { note(connection, [&] { return away; }); });
  back = own.address("/end");
  away = other.address("/foreign", "localhost");

  EXPECT_EQ(exchange(post(own.address("/start"), "{\"a\": 1}")),
            (Events{"response 307", "response 307", "response 200", "data", "finish"}));
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_TRUE(hasField(seen[0], "x-session-token1"));
  for (const std::size_t later : {1u, 2u}) {
    EXPECT_FALSE(hasField(seen[later], "x-session-token1")) << later;
    EXPECT_TRUE(hasField(seen[later], "Content-Type")) << later;
    EXPECT_EQ(seen[later].body, "{\"a\": 1}") << "a 307 keeps the body";
  }
}

TEST_F(CurlExchangeTest, ARedirectsTargetMayBeRelativeAndMayNotBringAUser) {
  std::string location;
  std::mutex lock;
  std::vector<std::string> paths;
  TlsServer server(serverIdentity(), [&](TlsConnection& connection) {
    while (const std::optional<SeenRequest> request = connection.read()) {
      const std::lock_guard guard(lock);
      paths.push_back(request->path);
      connection.write(request->path == "/a/start"
                           ? httpAnswer(302, "Location: " + location + "\r\n", "")
                           : httpAnswer(200, "", "ok"));
    }
  });
  struct Row {
    std::string location, path;  // no path: refused
  };
  std::string withUser = server.address("/end");
  withUser.insert(std::string("https://").size(), "user:word@");
  for (const Row& row : {Row{"end?x=1", "/a/end?x=1"}, Row{"/end", "/end"}, Row{withUser, ""},
                         Row{"https://", ""}, Row{"ftp://127.0.0.1/", ""}}) {
    SCOPED_TRACE(row.location);
    {
      const std::lock_guard guard(lock);
      location = row.location;
      paths.clear();
    }
    const Events events = exchange(post(server.address("/a/start")));
    const std::lock_guard guard(lock);
    if (row.path.empty()) {
      EXPECT_EQ(events, (Events{"response 302", "fail"}));
      EXPECT_EQ(paths.size(), 1u);
    } else {
      EXPECT_EQ(events.back(), "finish");
      EXPECT_EQ(paths.back(), row.path);
    }
  }
}

TEST_F(CurlExchangeTest, ACancelHangsUpAtOnce) {
  TlsServer server(serverIdentity(), [](TlsConnection& connection) {
    connection.read();
    connection.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
    connection.awaitClose();
  });
  bool answered = false;
  delegate = newDelegate();
  delegate->onResponse = [&] { platform.mainQueue().async([&answered] { answered = true; }); };
  const auto connection = start(post(server.address("/")), delegate);
  platform.mainQueue().runUntil([&answered] { return answered; });
  EXPECT_LT(timed([&] {
              connection->cancel();
              server.awaitEnded(1);
            }),
            promptly);
}

TEST_F(CurlExchangeTest, CloseReturnsPromptlyWhateverIsUnderWay) {
  TlsServer server(serverIdentity(), [](TlsConnection& connection) {
    connection.read();
    connection.awaitClose();
  });
  std::vector<std::shared_ptr<JudgingDelegate>> delegates;
  for (int i = 0; i < 8; ++i) {
    delegates.push_back(newDelegate());
    start(post(server.address("/")), delegates.back());
  }
  EXPECT_LT(timed([this] { connections.close(); }), promptly);
  bool drained = false;
  platform.backgroundQueues().global(
      QualityOfService::high, [&] { platform.mainQueue().async([&drained] { drained = true; }); });
  platform.mainQueue().runUntil([&drained] { return drained; });
  for (const std::shared_ptr<JudgingDelegate>& one : delegates) {
    EXPECT_TRUE(one->events.empty());
  }
}

TEST_F(CurlExchangeTest, AnUndecidedChallengeHoldsUpNeitherCloseNorCancel) {
  /// Decides only when it is let.
  struct Hesitating : RecordingDelegate {
    Hesitating(MainQueue& queue, Clock& clock)
        : RecordingDelegate(queue), condition(clock.newCondition()), time(clock) {}
    void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) override {
      mainQueue.async([this] { asked = true; });
      condition->lock();
      while (!decided && condition->waitUntil(time.steadyNow() + std::chrono::seconds(60))) {
      }
      condition->unlock();
      challenge.useCredentialForTrust();
      mainQueue.async([this] { ended = true; });
    }
    void decide() {
      condition->lock();
      decided = true;
      condition->unlock();
      condition->signal();
      await();
    }
    const std::unique_ptr<Condition> condition;
    Clock& time;
    bool asked = false, decided = false;
  };
  TlsServer server(serverIdentity(), answerAll);
  const auto hesitate = [&] {
    auto one = std::make_shared<Hesitating>(platform.mainQueue(), platform.clock());
    auto connection = start(post(server.address("/")), one);
    platform.mainQueue().runUntil([&one] { return one->asked; });
    return std::pair(one, connection);
  };
  const auto [cancelled, connection] = hesitate();
  EXPECT_LT(timed([&] {
              connection->cancel();
              server.awaitEnded(1);
            }),
            promptly);
  cancelled->decide();
  EXPECT_TRUE(cancelled->events.empty());
  EXPECT_EQ(exchange(post(server.address("/"))).back(), "finish") << "the thread goes on";

  TlsServer second(serverIdentity(), answerAll);
  const auto other = std::make_shared<Hesitating>(platform.mainQueue(), platform.clock());
  start(post(second.address("/")), other);
  platform.mainQueue().runUntil([&other] { return other->asked; });
  EXPECT_LT(timed([this] { connections.close(); }), promptly);
  other->decide();
  EXPECT_TRUE(other->events.empty());
}

TEST_F(CurlExchangeTest, AQuestionThatIsDroppedWithItsQueueHoldsUpNobody) {
  struct Dropping : OperationQueue {
    void add(Task) override {}
  };
  TlsServer server(serverIdentity(), answerAll);
  const auto connection = connections.newConnection(post(server.address("/")), newDelegate());
  connection->setDelegateQueue(std::make_shared<Dropping>());
  EXPECT_LT(timed([&] {
              connection->start();
              server.awaitEnded(1);
            }),
            promptly);
  EXPECT_EQ(exchange(post(server.address("/"))).back(), "finish");
}

TEST_F(CurlExchangeTest, ManyThreadsStartAndCancelAtOnce) {
  TlsServer server(serverIdentity(), answerAll);
  constexpr int threads = 4;
  constexpr int rounds = 15;
  int through = 0;
  int finished = 0;
  for (int thread = 0; thread < threads; ++thread) {
    platform.backgroundQueues().global(QualityOfService::high, [&, thread] {
      for (int round = 0; round < rounds; ++round) {
        const auto one = newDelegate();
        const auto connection = start(post(server.address("/")), one);
        if ((round + thread) % 3 == 0) {
          connection->cancel();
          platform.mainQueue().async([&through, one] { ++through; });
        } else {
          // The main queue learns of the end by the delegate itself.
          platform.mainQueue().async([&, one] {
            one->await();
            ++through;
            finished += one->events == Events{"response 200", "data", "finish"} ? 1 : 0;
          });
        }
      }
    });
  }
  platform.mainQueue().runUntil([&] { return through == threads * rounds; });
  EXPECT_EQ(finished, threads * rounds * 2 / 3);
}

TEST_F(CurlExchangeTest, AddressesAndMethodsThatAreNotSpokenFailAtOnce) {
  for (const auto& [url, method] : {std::pair<std::string, std::string>{"", "POST"},
                                    {"not an address", "POST"},
                                    {"file:///etc/passwd", "GET"},
                                    {"https://", "GET"},
                                    {"https://127.0.0.1:99999/", "GET"},
                                    {"https://127.0.0.1/", "DELETE"},
                                    {"https://127.0.0.1/\r\nX: 1", "GET"}}) {
    UrlRequest request = post(url);
    request.method = method;
    EXPECT_EQ(exchange(std::move(request)), (Events{"fail"})) << url;
    EXPECT_NE(delegate->error, "");
  }
  const auto connection = connections.newConnection(post("https://127.0.0.1/"), newDelegate());
  EXPECT_THROW(connection->start(), std::logic_error) << "without a queue";
}

}  // namespace orlix
