#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/UrlConnection.h"

namespace orlix {

/// What the scripted server does with a request.
struct ScriptedAnswer {
  enum class End {
    complete,      ///< the whole answer
    beforeHeader,  ///< hangs up before any byte of an answer
    insideBody,    ///< header and `body`, promising more, then hangs up
    silence,       ///< header and `body`, promising more, then nothing, with the connection open
    mute,          ///< nothing at all, with the connection open
  };
  int status = 200;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  End end = End::complete;
};

using AnswerEnd = ScriptedAnswer::End;

/// A request as it reached the scripted server. Header fields that HTTP itself needs (Host,
/// Content-Length) may be among the headers.
struct SeenRequest {
  std::string method;
  std::string path;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
};

/// Writes down what it is told. Trusts whatever chain it is shown. Main thread, but for the
/// callbacks, which come on the delegate queue.
class RecordingDelegate : public UrlConnectionDelegate,
                          public std::enable_shared_from_this<RecordingDelegate> {
 public:
  explicit RecordingDelegate(MainQueue& queue) : mainQueue(queue) {}

  bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod method) override {
    return method == AuthenticationMethod::serverTrust;
  }
  void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) override {
    challenge.useCredentialForTrust();
  }
  void didReceiveResponse(std::int64_t statusCode) override {
    events.push_back("response " + std::to_string(statusCode));
    body.clear();
    if (onResponse) {
      onResponse();
    }
  }
  void didReceiveData(std::span<const std::uint8_t> data) override {
    if (events.back() != "data") {
      events.emplace_back("data");
    }
    body.append(data.begin(), data.end());
  }
  void didFinishLoading() override { end("finish"); }
  void didFailWithError(const std::string& description) override {
    error = description;
    end("fail");
  }

  /// Waits for the end of the exchange. Main thread.
  void await() {
    mainQueue.runUntil([this] { return ended; });
  }

  MainQueue& mainQueue;
  std::function<void()> onResponse;  ///< set before the start; runs on the delegate queue
  std::vector<std::string> events;   ///< read once it has ended, or from the delegate queue
  std::string body;                  ///< since the last response
  std::string error;
  bool ended = false;  ///< main thread

 private:
  void end(const std::string& event) {
    events.push_back(event);
    // Weak: the delegate may be gone by then.
    mainQueue.async([weak = weak_from_this()] {
      if (const std::shared_ptr<RecordingDelegate> self = weak.lock()) {
        self->ended = true;
      }
    });
  }
};

/// Rules that every implementation of the URL connections keeps. `Platform` is made anew for each
/// test, on the test's thread, which is its main thread. It offers
///   MainQueue& mainQueue();  BackgroundQueues& backgroundQueues();  Clock& clock();
///   UrlConnections& urlConnections();
/// and a server that does as scripted, from the answer's first request on; the last answer for a
/// path serves all further requests to it:
///   void script(const std::string& path, ScriptedAnswer answer);
///   std::vector<SeenRequest> seen();                 // so far, in their order
///   std::string address(const std::string& path);    // https address at that server
template <class Platform>
class UrlConnectionsContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  std::shared_ptr<OperationQueue> queue = platform.backgroundQueues().newOperationQueue();
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>(mainQueue);

  UrlRequest post(const std::string& path, const std::string& body) {
    UrlRequest request;
    request.url = platform.address(path);
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}};
    request.body = SecretBytes(toBytes(body));
    return request;
  }
  std::shared_ptr<UrlConnection> start(UrlRequest request) {
    auto connection = platform.urlConnections().newConnection(std::move(request), delegate);
    connection->setDelegateQueue(queue);
    connection->start();
    return connection;
  }
  /// The events of one exchange, from its start to its end.
  std::vector<std::string> exchange(UrlRequest request) {
    delegate = std::make_shared<RecordingDelegate>(mainQueue);
    start(std::move(request));
    delegate->await();
    return delegate->events;
  }
  /// Returns when everything that was to be called on the delegate queue so far has been.
  void drainQueue() {
    bool drained = false;
    queue->add([&] { mainQueue.async([&drained] { drained = true; }); });
    mainQueue.runUntil([&drained] { return drained; });
  }
};
TYPED_TEST_SUITE_P(UrlConnectionsContract);

using Events = std::vector<std::string>;

TYPED_TEST_P(UrlConnectionsContract, AnAnswerOfAnyStatusIsResponseThenDataThenFinish) {
  for (const auto& [status, body] : {std::pair{200, std::string("{\"a\": 1}")},
                                     {200, std::string()},
                                     {403, std::string("no")},
                                     {500, std::string(300'000, 'x')}}) {
    const std::string path = "/s" + std::to_string(status) + std::to_string(body.size());
    this->platform.script(path, {.status = status, .headers = {}, .body = body});
    const Events events = this->exchange(this->post(path, "{}"));
    Events expected{"response " + std::to_string(status), "data", "finish"};
    if (body.empty()) {
      expected.erase(expected.begin() + 1);
    }
    EXPECT_EQ(events, expected);
    EXPECT_TRUE(this->delegate->body == body) << "status " << status;
  }
}

TYPED_TEST_P(UrlConnectionsContract, SendsMethodHeadersInTheirOrderAndBody) {
  this->platform.script("/vello/start", {});
  UrlRequest request = this->post("/vello/start", "{\n  \"pin\" : 1\n}");
  request.headers.emplace_back("x-session-token1", "T1+/=");
  request.headers.emplace_back("x-session-token2", "");
  this->exchange(std::move(request));
  UrlRequest bare;
  bare.url = this->platform.address("/vello/start");
  bare.method = "POST";
  this->exchange(std::move(bare));

  const std::vector<SeenRequest> seen = this->platform.seen();
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].method, "POST");
  EXPECT_EQ(seen[0].path, "/vello/start");
  EXPECT_EQ(seen[0].body, "{\n  \"pin\" : 1\n}");
  std::vector<std::pair<std::string, std::string>> own = seen[0].headers;
  std::erase_if(own, [](const auto& field) {
    return field.first == "Host" || field.first == "Content-Length";
  });
  EXPECT_EQ(own,
            (std::vector<std::pair<std::string, std::string>>{{"Content-Type", "application/json"},
                                                              {"x-session-token1", "T1+/="},
                                                              {"x-session-token2", ""}}));
  EXPECT_EQ(seen[1].method, "POST") << "a POST without a body stays one";
  EXPECT_EQ(seen[1].body, "");
  for (const auto& [name, value] : seen[1].headers) {
    EXPECT_TRUE(name == "Host" || (name == "Content-Length" && value == "0"))
        << name << ": " << value;
  }
}

TYPED_TEST_P(UrlConnectionsContract, AFailureTellsWhatArrivedBeforeIt) {
  this->platform.script("/none", {.headers = {}, .body = "", .end = AnswerEnd::beforeHeader});
  this->platform.script("/half", {.headers = {}, .body = "half", .end = AnswerEnd::insideBody});
  this->platform.script("/header", {.headers = {}, .body = "", .end = AnswerEnd::insideBody});
  EXPECT_EQ(this->exchange(this->post("/none", "{}")), (Events{"fail"}));
  EXPECT_NE(this->delegate->error, "");
  EXPECT_EQ(this->exchange(this->post("/half", "{}")), (Events{"response 200", "data", "fail"}));
  EXPECT_EQ(this->delegate->body, "half");
  EXPECT_EQ(this->exchange(this->post("/header", "{}")), (Events{"response 200", "fail"}));
  EXPECT_EQ(this->platform.seen().size(), 3u) << "nothing is sent a second time";
}

TYPED_TEST_P(UrlConnectionsContract, SilenceEndsAtTheRequestsTimeout) {
  this->platform.script("/mute", {.headers = {}, .body = "", .end = AnswerEnd::mute});
  this->platform.script("/silent", {.headers = {}, .body = "some", .end = AnswerEnd::silence});
  for (const auto& [path, expected] :
       {std::pair{"/mute", Events{"fail"}}, {"/silent", Events{"response 200", "data", "fail"}}}) {
    UrlRequest request = this->post(path, "{}");
    request.timeout = std::chrono::seconds(1);
    const SteadyTime before = this->platform.clock().steadyNow();
    EXPECT_EQ(this->exchange(std::move(request)), expected);
    const Duration took = this->platform.clock().steadyNow() - before;
    EXPECT_GE(took, std::chrono::seconds(1));
    EXPECT_LT(took, std::chrono::seconds(30));
  }
}

TYPED_TEST_P(UrlConnectionsContract, ARedirectIsFollowedAndReported) {
  this->platform.script("/target", {.headers = {}, .body = "there"});
  struct Row {
    int status;
    std::string method, body;
  };
  for (const Row& row : {Row{301, "GET", ""}, Row{302, "GET", ""}, Row{303, "GET", ""},
                         Row{307, "POST", "{}"}, Row{308, "POST", "{}"}}) {
    const std::string path = "/from" + std::to_string(row.status);
    this->platform.script(path, {.status = row.status,
                                 .headers = {{"Location", this->platform.address("/target")}},
                                 .body = "moved"});
    UrlRequest request = this->post(path, "{}");
    request.headers.emplace_back("x-session-token1", "T1");
    const Events events = this->exchange(std::move(request));
    ASSERT_GE(events.size(), 4u);
    EXPECT_EQ(events.front(), "response " + std::to_string(row.status));
    EXPECT_EQ(Events(events.end() - 3, events.end()), (Events{"response 200", "data", "finish"}));
    EXPECT_EQ(this->delegate->body, "there") << "the body restarts with each response";
    const SeenRequest last = this->platform.seen().back();
    EXPECT_EQ(last.path, "/target");
    EXPECT_EQ(last.method, row.method) << row.status;
    EXPECT_EQ(last.body, row.body) << row.status;
    bool token = false;
    for (const auto& [name, value] : last.headers) {
      token = token || (name == "x-session-token1" && value == "T1");
    }
    EXPECT_TRUE(token) << "the same host gets the same headers";
  }
}

TYPED_TEST_P(UrlConnectionsContract, ARedirectWhoseTargetStaysSilentHasReportedItsOwnCode) {
  this->platform.script(
      "/from",
      {.status = 307, .headers = {{"Location", this->platform.address("/mute")}}, .body = ""});
  this->platform.script("/mute", {.headers = {}, .body = "", .end = AnswerEnd::mute});
  UrlRequest request = this->post("/from", "{}");
  request.timeout = std::chrono::seconds(1);
  EXPECT_EQ(this->exchange(std::move(request)), (Events{"response 307", "fail"}));
}

TYPED_TEST_P(UrlConnectionsContract, RedirectsThatNeverEndOrLeaveTheSecureSchemeFail) {
  this->platform.script(
      "/loop",
      {.status = 302, .headers = {{"Location", this->platform.address("/loop")}}, .body = ""});
  const Events loop = this->exchange(this->post("/loop", "{}"));
  EXPECT_EQ(loop.back(), "fail");
  EXPECT_LE(this->platform.seen().size(), 25u);
  EXPECT_GE(this->platform.seen().size(), 15u);

  std::string plain = this->platform.address("/target");
  plain.erase(plain.find("https") + 4, 1);
  this->platform.script("/plain", {.status = 307, .headers = {{"Location", plain}}, .body = ""});
  const Events events = this->exchange(this->post("/plain", "{}"));
  EXPECT_EQ(events, (Events{"response 307", "fail"}));
  UrlRequest request = this->post("/target", "{}");
  request.url = plain;
  EXPECT_EQ(this->exchange(std::move(request)), (Events{"fail"}));
}

TYPED_TEST_P(UrlConnectionsContract, RefusesAHeaderThatWouldBreakTheLine) {
  this->platform.script("/ok", {});
  for (const auto& [name, value] :
       {std::pair<std::string, std::string>{"x-token", "a\r\nx-evil: b"},
        {"x-token", "a\nb"},
        {"x-token", std::string("a\0b", 3)},
        {"x-to\r\nken", "a"}}) {
    UrlRequest request = this->post("/ok", "{}");
    request.headers.emplace_back(name, value);
    EXPECT_EQ(this->exchange(std::move(request)), (Events{"fail"}));
  }
  EXPECT_TRUE(this->platform.seen().empty());
}

TYPED_TEST_P(UrlConnectionsContract, NothingIsToldAfterCancel) {
  this->platform.script("/body", {.headers = {}, .body = std::string(100'000, 'b')});
  this->platform.script("/silent", {.headers = {}, .body = "some", .end = AnswerEnd::silence});

  // From inside a callback, with the rest of the answer on its way.
  std::shared_ptr<UrlConnection> inside;
  bool cancelled = false;
  this->delegate->onResponse = [&, this] {
    inside->cancel();
    inside->cancel();
    this->mainQueue.async([&cancelled] { cancelled = true; });
  };
  inside = this->platform.urlConnections().newConnection(this->post("/body", "{}"), this->delegate);
  inside->setDelegateQueue(this->queue);
  inside->start();
  this->mainQueue.runUntil([&cancelled] { return cancelled; });
  const std::shared_ptr<RecordingDelegate> first = this->delegate;

  // From another thread, while the exchange waits for the server.
  this->delegate = std::make_shared<RecordingDelegate>(this->mainQueue);
  bool answered = false;
  this->delegate->onResponse = [&, this] {
    this->mainQueue.async([&answered] { answered = true; });
  };
  const std::shared_ptr<UrlConnection> waiting = this->start(this->post("/silent", "{}"));
  this->mainQueue.runUntil([&answered] { return answered; });
  waiting->cancel();
  const std::shared_ptr<RecordingDelegate> second = this->delegate;

  // Before it was started.
  this->delegate = std::make_shared<RecordingDelegate>(this->mainQueue);
  const std::shared_ptr<UrlConnection> early =
      this->platform.urlConnections().newConnection(this->post("/body", "{}"), this->delegate);
  early->setDelegateQueue(this->queue);
  early->cancel();
  early->start();
  const std::shared_ptr<RecordingDelegate> third = this->delegate;

  this->exchange(this->post("/body", "{}"));
  this->drainQueue();
  EXPECT_EQ(first->events, (Events{"response 200"}));
  EXPECT_TRUE(second->events == (Events{"response 200"}) ||
              second->events == (Events{"response 200", "data"}));
  EXPECT_TRUE(third->events.empty());
}

TYPED_TEST_P(UrlConnectionsContract, TheDelegateLivesUntilItsLastCallbackAndNoLonger) {
  this->platform.script("/ok", {.headers = {}, .body = "ok"});
  this->platform.script("/mute", {.headers = {}, .body = "", .end = AnswerEnd::mute});
  for (const bool cancelling : {false, true}) {
    bool gone = false;
    struct Sentinel {
      MainQueue& mainQueue;
      bool& gone;
      ~Sentinel() {
        mainQueue.async([&flag = gone] { flag = true; });
      }
    };
    struct Owned : RecordingDelegate {
      Owned(MainQueue& queue, bool& flag) : RecordingDelegate(queue), sentinel{queue, flag} {}
      Sentinel sentinel;
    };
    const auto connection = this->platform.urlConnections().newConnection(
        this->post(cancelling ? "/mute" : "/ok", "{}"),
        std::make_shared<Owned>(this->mainQueue, gone));
    connection->setDelegateQueue(this->queue);
    connection->start();
    if (cancelling) {
      connection->cancel();
    }
    this->mainQueue.runUntil([&gone] { return gone; });
    EXPECT_TRUE(gone) << "while the connection itself is still held";
  }
}

TYPED_TEST_P(UrlConnectionsContract, ExchangesRunSideBySide) {
  this->platform.script("/mute", {.headers = {}, .body = "", .end = AnswerEnd::mute});
  this->platform.script("/ok", {.headers = {}, .body = "ok"});
  const std::shared_ptr<UrlConnection> blocked = this->start(this->post("/mute", "{}"));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(this->exchange(this->post("/ok", "{}")).back(), "finish");
  }
  blocked->cancel();
}

TYPED_TEST_P(UrlConnectionsContract, CloseEndsEverythingUntoldAndLaterStartsFail) {
  this->platform.script("/silent", {.headers = {}, .body = "some", .end = AnswerEnd::silence});
  bool answered = false;
  this->delegate->onResponse = [&, this] {
    this->mainQueue.async([&answered] { answered = true; });
  };
  const std::shared_ptr<UrlConnection> under = this->start(this->post("/silent", "{}"));
  this->mainQueue.runUntil([&answered] { return answered; });
  this->platform.urlConnections().close();
  this->drainQueue();
  EXPECT_FALSE(this->delegate->ended);
  EXPECT_EQ(this->delegate->events.front(), "response 200");

  EXPECT_EQ(this->exchange(this->post("/silent", "{}")), (Events{"fail"}));
  this->platform.urlConnections().close();
  under->cancel();
}

REGISTER_TYPED_TEST_SUITE_P(UrlConnectionsContract, AnAnswerOfAnyStatusIsResponseThenDataThenFinish,
                            SendsMethodHeadersInTheirOrderAndBody, AFailureTellsWhatArrivedBeforeIt,
                            SilenceEndsAtTheRequestsTimeout, ARedirectIsFollowedAndReported,
                            ARedirectWhoseTargetStaysSilentHasReportedItsOwnCode,
                            RedirectsThatNeverEndOrLeaveTheSecureSchemeFail,
                            RefusesAHeaderThatWouldBreakTheLine, NothingIsToldAfterCancel,
                            TheDelegateLivesUntilItsLastCallbackAndNoLonger, ExchangesRunSideBySide,
                            CloseEndsEverythingUntoldAndLaterStartsFail);

}  // namespace orlix
