#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
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
  std::string body = {};
  std::string location = {};  ///< of a redirect
  End end = End::complete;
};

using AnswerEnd = ScriptedAnswer::End;
using Events = std::vector<std::string>;
using Fields = std::vector<std::pair<std::string, std::string>>;

/// A request as it reached the scripted server. Header fields that HTTP itself needs (Host,
/// Content-Length) may be among the headers.
struct SeenRequest {
  std::string method;
  std::string path;
  Fields headers;
  std::string body;

  std::optional<std::string> field(const std::string& name) const {
    for (const auto& [key, value] : headers) {
      if (key == name) {
        return value;
      }
    }
    return std::nullopt;
  }
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
  Events events;                     ///< read once it has ended, or from the delegate queue
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
/// and a server that does as scripted:
///   void script(const std::string& path, ScriptedAnswer answer);
///   std::vector<SeenRequest> seen();                 // so far, in their order
///   std::string address(const std::string& path);    // https address at that server
///   std::string foreign(const std::string& path);    // the same by the server's other name
template <class Platform>
class UrlConnectionsContract : public testing::Test {
 protected:
  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  std::shared_ptr<OperationQueue> queue = platform.backgroundQueues().newOperationQueue();
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>(mainQueue);

  void SetUp() override {
    platform.script("/ok", {.body = "ok"});
    platform.script("/mute", {.end = AnswerEnd::mute});
    platform.script("/silent", {.body = "some", .end = AnswerEnd::silence});
  }
  UrlRequest post(const std::string& path, const std::string& body = "{}") {
    UrlRequest request;
    request.url = platform.address(path);
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}};
    request.body = SecretBytes(toBytes(body));
    request.timeout = std::chrono::seconds(60);
    return request;
  }
  std::shared_ptr<UrlConnection> start(UrlRequest request) {
    auto connection = platform.urlConnections().newConnection(std::move(request), delegate);
    connection->setDelegateQueue(queue);
    connection->start();
    return connection;
  }
  /// The events of one exchange, from its start to its end.
  Events exchange(UrlRequest request) {
    delegate = std::make_shared<RecordingDelegate>(mainQueue);
    start(std::move(request));
    delegate->await();
    return delegate->events;
  }
  /// Starts an exchange that waits for the rest of its answer, once the header is there.
  std::shared_ptr<UrlConnection> startSilent() {
    delegate = std::make_shared<RecordingDelegate>(mainQueue);
    bool answered = false;
    delegate->onResponse = [this, &answered] { mainQueue.async([&answered] { answered = true; }); };
    auto connection = start(post("/silent"));
    mainQueue.runUntil([&answered] { return answered; });
    return connection;
  }
  /// Returns when everything that was to be called on the delegate queue so far has been.
  void drainQueue() {
    bool drained = false;
    queue->add([&] { mainQueue.async([&drained] { drained = true; }); });
    mainQueue.runUntil([&drained] { return drained; });
  }
};
TYPED_TEST_SUITE_P(UrlConnectionsContract);

TYPED_TEST_P(UrlConnectionsContract, AnAnswerOfAnyStatusIsResponseThenDataThenFinish) {
  for (const int status : {200, 403, 500}) {
    const std::string large(300'000, 'x');
    this->platform.script("/body", {.status = status, .body = large});
    EXPECT_EQ(this->exchange(this->post("/body")),
              (Events{"response " + std::to_string(status), "data", "finish"}));
    EXPECT_TRUE(this->delegate->body == large);
    this->platform.script("/empty", {.status = status});
    EXPECT_EQ(this->exchange(this->post("/empty")),
              (Events{"response " + std::to_string(status), "finish"}));
  }
}

TYPED_TEST_P(UrlConnectionsContract, SendsMethodHeadersInTheirOrderAndBody) {
  UrlRequest request = this->post("/ok", "{\n  \"pin\" : 1\n}");
  request.headers.emplace_back("x-session-token1", "T1+/=");
  request.headers.emplace_back("x-session-token2", "");
  this->exchange(std::move(request));
  UrlRequest bare;
  bare.url = this->platform.address("/ok");
  bare.method = "POST";
  this->exchange(std::move(bare));

  std::vector<SeenRequest> seen = this->platform.seen();
  ASSERT_EQ(seen.size(), 2u);
  for (SeenRequest& one : seen) {
    EXPECT_EQ(one.method + one.path, "POST/ok") << "a POST without a body stays one";
    std::erase_if(one.headers, [](const auto& field) {
      return field.first == "Host" || field.first == "Content-Length";
    });
  }
  EXPECT_EQ(seen[0].body, "{\n  \"pin\" : 1\n}");
  EXPECT_EQ(seen[0].headers, (Fields{{"Content-Type", "application/json"},
                                     {"x-session-token1", "T1+/="},
                                     {"x-session-token2", ""}}));
  EXPECT_EQ(seen[1].body, "");
  EXPECT_EQ(seen[1].headers, Fields{});
}

TYPED_TEST_P(UrlConnectionsContract, AFailureTellsWhatArrivedBeforeIt) {
  this->platform.script("/none", {.end = AnswerEnd::beforeHeader});
  this->platform.script("/half", {.body = "half", .end = AnswerEnd::insideBody});
  this->platform.script("/header", {.end = AnswerEnd::insideBody});
  EXPECT_EQ(this->exchange(this->post("/none")), (Events{"fail"}));
  EXPECT_NE(this->delegate->error, "");
  EXPECT_EQ(this->exchange(this->post("/half")), (Events{"response 200", "data", "fail"}));
  EXPECT_EQ(this->delegate->body, "half");
  EXPECT_EQ(this->exchange(this->post("/header")), (Events{"response 200", "fail"}));
  EXPECT_EQ(this->platform.seen().size(), 3u) << "nothing is sent a second time";
}

TYPED_TEST_P(UrlConnectionsContract, SilenceEndsAtTheRequestsTimeoutWithWhatWasReportedBefore) {
  this->platform.script("/from", {.status = 307, .location = this->platform.address("/mute")});
  for (const auto& [path, expected] : {std::pair{"/mute", Events{"fail"}},
                                       {"/silent", Events{"response 200", "data", "fail"}},
                                       {"/from", Events{"response 307", "fail"}}}) {
    UrlRequest request = this->post(path);
    // Measured by the real transport's own clock: on a busy machine, too, what is reported before
    // has to arrive within it.
    request.timeout = std::chrono::seconds(3);
    const SteadyTime before = this->platform.clock().steadyNow();
    EXPECT_EQ(this->exchange(std::move(request)), expected);
    const Duration took = this->platform.clock().steadyNow() - before;
    EXPECT_GE(took, std::chrono::seconds(3));
    EXPECT_LT(took, std::chrono::seconds(30));
  }
}

TYPED_TEST_P(UrlConnectionsContract, ARedirectIsFollowedAndReported) {
  for (const int status : {301, 302, 303, 307, 308}) {
    const bool keeps = status >= 307;
    this->platform.script(
        "/from", {.status = status, .body = "moved", .location = this->platform.address("/ok")});
    UrlRequest request = this->post("/from");
    request.headers.emplace_back("x-session-token1", "T1");
    const Events events = this->exchange(std::move(request));
    ASSERT_GE(events.size(), 4u);
    EXPECT_EQ(events.front(), "response " + std::to_string(status));
    EXPECT_EQ(Events(events.end() - 3, events.end()), (Events{"response 200", "data", "finish"}));
    EXPECT_EQ(this->delegate->body, "ok") << "the body restarts with each response";
    const SeenRequest last = this->platform.seen().back();
    EXPECT_EQ(last.method + last.path, keeps ? "POST/ok" : "GET/ok") << status;
    EXPECT_EQ(last.body, keeps ? "{}" : "") << status;
    EXPECT_EQ(last.field("x-session-token1"), "T1") << "the same host gets the same headers";
  }
}

TYPED_TEST_P(UrlConnectionsContract, ABodyIsNotCarriedToAnotherOrigin) {
  for (const int status : {307, 308}) {
    this->platform.script("/from",
                          {.status = status, .location = this->platform.foreign("/there")});
    const std::size_t before = this->platform.seen().size();
    EXPECT_EQ(this->exchange(this->post("/from")),
              (Events{"response " + std::to_string(status), "fail"}));
    EXPECT_NE(this->delegate->error.find("would carry the request's body to another server"),
              std::string::npos)
        << this->delegate->error;
    EXPECT_EQ(this->platform.seen().size(), before + 1);
  }
}

TYPED_TEST_P(UrlConnectionsContract, OnlyTheContentTypeFollowsToAnotherHostAndTheTokensStayOut) {
  this->platform.script("/from", {.status = 307, .location = this->platform.foreign("/there")});
  this->platform.script("/there", {.status = 307, .location = this->platform.address("/ok")});
  UrlRequest request = this->post("/from", "");
  request.headers.emplace_back("x-session-token1", "T1");
  EXPECT_EQ(this->exchange(std::move(request)),
            (Events{"response 307", "response 307", "response 200", "data", "finish"}));
  const std::vector<SeenRequest> seen = this->platform.seen();
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_TRUE(seen[0].field("x-session-token1"));
  for (const std::size_t later : {1u, 2u}) {
    EXPECT_FALSE(seen[later].field("x-session-token1")) << "for good, also back at home";
    EXPECT_TRUE(seen[later].field("Content-Type"));
    EXPECT_EQ(seen[later].method, "POST");
  }
}

TYPED_TEST_P(UrlConnectionsContract, RedirectsThatNeverEndOrLeaveTheSecureSchemeFail) {
  this->platform.script("/loop", {.status = 302, .location = this->platform.address("/loop")});
  EXPECT_EQ(this->exchange(this->post("/loop")).back(), "fail");
  EXPECT_LE(this->platform.seen().size(), 25u);
  EXPECT_GE(this->platform.seen().size(), 15u);

  std::string plain = this->platform.address("/ok");
  plain.erase(plain.find("https") + 4, 1);
  this->platform.script("/plain", {.status = 307, .location = plain});
  EXPECT_EQ(this->exchange(this->post("/plain")), (Events{"response 307", "fail"}));
  UrlRequest request = this->post("/ok");
  request.url = plain;
  EXPECT_EQ(this->exchange(std::move(request)), (Events{"fail"}));
}

TYPED_TEST_P(UrlConnectionsContract, AWithdrawnRequestFailsAndIsNotSent) {
  for (const int status : {303, 307}) {
    this->platform.script("/from" + std::to_string(status),
                          {.status = status, .location = this->platform.address("/ok")});
  }
  const struct {
    std::string name;
    std::string path;
    int timesAllowed;
    Events events;
    std::size_t sent;
  } rows[] = {
      {"allowed", "/ok", 1, {"response 200", "data", "finish"}, 1},
      {"withdrawn at once", "/ok", 0, {"fail"}, 0},
      {"withdrawn before a redirect with the body", "/from307", 1, {"response 307", "fail"}, 1},
      {"withdrawn before a redirect without it", "/from303", 1, {"response 303", "fail"}, 1},
      {"allowed twice", "/from307", 2, {"response 307", "response 200", "data", "finish"}, 2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::size_t before = this->platform.seen().size();
    UrlRequest request = this->post(row.path);
    const auto left = std::make_shared<std::atomic<int>>(row.timesAllowed);
    request.mayBeSent = [left] { return (*left)-- > 0; };
    EXPECT_EQ(this->exchange(std::move(request)), row.events);
    EXPECT_EQ(this->delegate->error.find("withdrawn before it was sent") != std::string::npos,
              row.events.back() == "fail");
    EXPECT_EQ(this->platform.seen().size(), before + row.sent);
  }
  UrlRequest request = this->post("/ok");
  request.mayBeSent = []() -> bool { throw 1; };
  EXPECT_EQ(this->exchange(std::move(request)), (Events{"fail"})) << "an exception counts as false";
}

TYPED_TEST_P(UrlConnectionsContract, RefusesAHeaderThatWouldBreakTheLine) {
  for (const auto& [name, value] : Fields{{"x-token", "a\r\nx-evil: b"},
                                          {"x-token", "a\nb"},
                                          {"x-token", std::string("a\0b", 3)},
                                          {"x-to\r\nken", "a"}}) {
    UrlRequest request = this->post("/ok");
    request.headers.emplace_back(name, value);
    EXPECT_EQ(this->exchange(std::move(request)), (Events{"fail"}));
  }
  EXPECT_TRUE(this->platform.seen().empty());
}

TYPED_TEST_P(UrlConnectionsContract, NothingIsToldAfterCancelAndOthersGoOn) {
  // From another thread, while the exchange waits for the server.
  const std::shared_ptr<UrlConnection> waiting = this->startSilent();
  const std::shared_ptr<RecordingDelegate> first = this->delegate;
  EXPECT_EQ(this->exchange(this->post("/ok")).back(), "finish") << "side by side";
  waiting->cancel();

  // From inside a callback, with the rest of the answer on its way.
  this->platform.script("/body", {.body = std::string(100'000, 'b')});
  const auto second = std::make_shared<RecordingDelegate>(this->mainQueue);
  bool cancelled = false;
  const auto inside = this->platform.urlConnections().newConnection(this->post("/body"), second);
  second->onResponse = [&, this] {
    inside->cancel();
    inside->cancel();
    this->mainQueue.async([&cancelled] { cancelled = true; });
  };
  inside->setDelegateQueue(this->queue);
  inside->start();
  this->mainQueue.runUntil([&cancelled] { return cancelled; });

  this->exchange(this->post("/body"));
  this->drainQueue();
  EXPECT_FALSE(first->ended);
  EXPECT_EQ(second->events, (Events{"response 200"}));
}

TYPED_TEST_P(UrlConnectionsContract, CloseEndsEverythingUntoldAndLaterStartsFail) {
  const std::shared_ptr<UrlConnection> under = this->startSilent();
  this->platform.urlConnections().close();
  this->drainQueue();
  EXPECT_FALSE(this->delegate->ended);
  EXPECT_EQ(this->exchange(this->post("/ok")), (Events{"fail"}));
  this->platform.urlConnections().close();
  under->cancel();
}

REGISTER_TYPED_TEST_SUITE_P(UrlConnectionsContract, AnAnswerOfAnyStatusIsResponseThenDataThenFinish,
                            SendsMethodHeadersInTheirOrderAndBody, AFailureTellsWhatArrivedBeforeIt,
                            SilenceEndsAtTheRequestsTimeoutWithWhatWasReportedBefore,
                            ARedirectIsFollowedAndReported, ABodyIsNotCarriedToAnotherOrigin,
                            OnlyTheContentTypeFollowsToAnotherHostAndTheTokensStayOut,
                            RedirectsThatNeverEndOrLeaveTheSecureSchemeFail,
                            AWithdrawnRequestFailsAndIsNotSent, RefusesAHeaderThatWouldBreakTheLine,
                            NothingIsToldAfterCancelAndOthersGoOn,
                            CloseEndsEverythingUntoldAndLaterStartsFail);

}  // namespace orlix
