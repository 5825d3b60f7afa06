// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/HttpClient.h"
#include "orlixkit/ports/MainQueue.h"

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

/// Records its calls. Trusts every chain.
class RecordingDelegate : public HttpDelegate {
 public:
  using Answer = std::function<bool()>;

  bool trusts(ServerTrust*) override { return true; }
  bool mayBeSent() override { return onRequest(); }
  bool didReceiveResponse(std::int64_t statusCode) override {
    events.push_back("response " + std::to_string(statusCode));
    body.clear();
    return onResponse();
  }
  bool didReceiveData(std::span<const std::uint8_t> data) override {
    if (events.back() != "data") {
      events.emplace_back("data");
    }
    body.append(data.begin(), data.end());
    ++pieces;
    return onData();
  }

  // Run by the exchange's thread.
  Answer onRequest = [] { return true; };
  Answer onResponse = [] { return true; };
  Answer onData = [] { return true; };
  Events events;     ///< the last one says how the exchange ended, once it has
  std::string body;  ///< since the last response
  int pieces = 0;    ///< of any body
  std::string error;
};

inline std::string nameOf(HttpResult::End end) {
  static const char* const names[] = {"complete", "failed", "timed out", "stopped", "closed"};
  return names[static_cast<std::size_t>(end)];
}

/// Performs an exchange, and adds its end to what the delegate has written down.
inline void perform(HttpClient& client, const HttpRequest& request, RecordingDelegate& delegate) {
  const HttpResult result = client.perform(request, delegate);
  delegate.events.push_back(nameOf(result.end));
  delegate.error = result.error;
}

/// Rules that every HTTP client keeps. `Platform` is made for each test, on the test's thread,
/// which is its main thread. It offers
///   MainQueue& mainQueue();  BackgroundQueues& backgroundQueues();  Clock& clock();
///   HttpClient& httpClient();
/// and a server that does as scripted:
///   void script(const std::string& path, ScriptedAnswer answer);
///   std::vector<SeenRequest> seen();                 // so far, in their order
///   std::string address(const std::string& path);    // https address at that server
///   std::string foreign(const std::string& path);    // the same by the server's other name
template <class Platform>
class HttpClientContract : public testing::Test {
 protected:
  using Delegate = std::shared_ptr<RecordingDelegate>;

  Platform platform;
  MainQueue& mainQueue = platform.mainQueue();
  HttpClient& client = platform.httpClient();
  Delegate delegate = std::make_shared<RecordingDelegate>();

  void SetUp() override {
    platform.script("/ok", {.body = "ok"});
    platform.script("/mute", {.end = AnswerEnd::mute});
    platform.script("/silent", {.body = "some", .end = AnswerEnd::silence});
  }
  HttpRequest post(const std::string& path, const std::string& body = "{}") {
    HttpRequest request;
    request.url = platform.address(path);
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}};
    request.body = SecretBytes(toBytes(body));
    request.deadline = platform.clock().steadyNow() + std::chrono::seconds(60);
    return request;
  }
  /// What one exchange on the main thread brings; by a new delegate.
  Events exchange(const HttpRequest& request) {
    delegate = std::make_shared<RecordingDelegate>();
    perform(client, request, *delegate);
    return delegate->events;
  }
  /// Returns when an exchange in the background waits for the rest of its answer.
  Delegate beginSilent() {
    const auto one = std::make_shared<RecordingDelegate>();
    bool answered = false;
    one->onData = [this, &answered] {
      mainQueue.async([&answered] { answered = true; });
      return true;
    };
    ++underWay;
    platform.backgroundQueues().global(QualityOfService::high,
                                       [this, one, request = post("/silent")] {
                                         perform(client, request, *one);
                                         mainQueue.async([this] { --underWay; });
                                       });
    mainQueue.runUntil([&answered] { return answered; });
    return one;
  }
  void awaitBackground() {
    mainQueue.runUntil([this] { return underWay == 0; });
  }

  int underWay = 0;  // in the background; main thread
};
TYPED_TEST_SUITE_P(HttpClientContract);

TYPED_TEST_P(HttpClientContract, TellsWhatArrivesAndHowItEndsAndSendsNothingTwice) {
  const std::string large(300'000, 'x');
  const std::string ok = this->platform.address("/ok");
  const std::string foreign = this->platform.foreign("/there");
  const std::string plain = "http" + ok.substr(ok.find(':'));
  const std::string carried = "would carry the request's body to another server";
  const struct {
    std::string name;
    ScriptedAnswer answer;
    Events events;
    std::string error = {};  // a part of it
    int timesAllowed = 100;
    std::size_t sent = 1;
  } rows[] = {
      {"a body", {.body = large}, {"response 200", "data", "complete"}},
      {"a refusal", {.status = 403, .body = large}, {"response 403", "data", "complete"}},
      {"an error without a body", {.status = 500}, {"response 500", "complete"}},
      {"no answer", {.end = AnswerEnd::beforeHeader}, {"failed"}},
      {"half", {.body = "half", .end = AnswerEnd::insideBody}, {"response 200", "data", "failed"}},
      {"the header", {.end = AnswerEnd::insideBody}, {"response 200", "failed"}},
      {"to another origin",
       {.status = 307, .location = foreign},
       {"response 307", "failed"},
       carried},
      {"for good", {.status = 308, .location = foreign}, {"response 308", "failed"}, carried},
      {"to another scheme", {.status = 307, .location = plain}, {"response 307", "failed"}},
      {"withdrawn at once", {}, {"stopped"}, "", 0, 0},
      {"withdrawn before a redirect with the body",
       {.status = 307, .location = ok},
       {"response 307", "stopped"},
       "",
       1},
      {"withdrawn before a redirect without it",
       {.status = 303, .location = ok},
       {"response 303", "stopped"},
       "",
       1},
      {"allowed twice",
       {.status = 307, .location = ok},
       {"response 307", "response 200", "data", "complete"},
       "",
       2,
       2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    this->platform.script("/from", row.answer);
    const std::size_t before = this->platform.seen().size();
    RecordingDelegate one;
    one.onRequest = [left = row.timesAllowed]() mutable { return left-- > 0; };
    perform(this->client, this->post("/from"), one);
    EXPECT_EQ(one.events, row.events);
    EXPECT_TRUE(one.body == (row.sent == 2 ? "ok" : row.answer.body));
    EXPECT_EQ(one.error.empty(), row.events.back() != "failed");
    EXPECT_NE(one.error.find(row.error), std::string::npos) << one.error;
    EXPECT_EQ(this->platform.seen().size(), before + row.sent);
  }
}

TYPED_TEST_P(HttpClientContract, SendsMethodHeadersInTheirOrderAndBody) {
  HttpRequest request = this->post("/ok", "{\n  \"pin\" : 1\n}");
  request.headers.emplace_back("x-session-token1", "T1+/=");
  request.headers.emplace_back("x-session-token2", "");
  this->exchange(request);
  HttpRequest bare;
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

TYPED_TEST_P(HttpClientContract, SilenceEndsAtTheDeadlineWithWhatWasReportedBefore) {
  this->platform.script("/from", {.status = 307, .location = this->platform.address("/mute")});
  for (const auto& [path, expected] : {std::pair{"/mute", Events{"timed out"}},
                                       {"/silent", Events{"response 200", "data", "timed out"}},
                                       {"/from", Events{"response 307", "timed out"}}}) {
    HttpRequest request = this->post(path);
    const SteadyTime before = this->platform.clock().steadyNow();
    // On a busy machine, too, what is reported before has to arrive within it.
    request.deadline = before + std::chrono::seconds(3);
    EXPECT_EQ(this->exchange(request), expected);
    const Duration took = this->platform.clock().steadyNow() - before;
    EXPECT_GE(took, std::chrono::seconds(3));
    EXPECT_LT(took, std::chrono::seconds(30));
  }
}

TYPED_TEST_P(HttpClientContract, ARedirectIsFollowedAndReported) {
  for (const int status : {301, 302, 303, 307, 308}) {
    const bool keeps = status >= 307;
    this->platform.script(
        "/from", {.status = status, .body = "moved", .location = this->platform.address("/ok")});
    HttpRequest request = this->post("/from");
    request.headers.emplace_back("x-session-token1", "T1");
    const Events events = this->exchange(request);
    ASSERT_GE(events.size(), 4u);
    EXPECT_EQ(events.front(), "response " + std::to_string(status));
    EXPECT_EQ(Events(events.end() - 3, events.end()), (Events{"response 200", "data", "complete"}));
    EXPECT_EQ(this->delegate->body, "ok") << "the body restarts with each response";
    const SeenRequest last = this->platform.seen().back();
    EXPECT_EQ(last.method + last.path, keeps ? "POST/ok" : "GET/ok") << status;
    EXPECT_EQ(last.body, keeps ? "{}" : "") << status;
    EXPECT_EQ(last.field("x-session-token1"), "T1") << "the same host gets the same headers";
  }
}

TYPED_TEST_P(HttpClientContract, OnlyTheContentTypeFollowsToAnotherHostAndTheTokensStayOut) {
  this->platform.script("/from", {.status = 307, .location = this->platform.foreign("/there")});
  this->platform.script("/there", {.status = 307, .location = this->platform.address("/back")});
  this->platform.script("/back", {.status = 307, .location = this->platform.address("/ok")});
  HttpRequest request = this->post("/from", "");
  request.headers.emplace_back("x-session-token1", "T1");
  EXPECT_EQ(this->exchange(request), (Events{"response 307", "response 307", "response 307",
                                             "response 200", "data", "complete"}));
  const std::vector<SeenRequest> seen = this->platform.seen();
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_TRUE(seen[0].field("x-session-token1"));
  for (const std::size_t later : {1u, 2u, 3u}) {
    EXPECT_FALSE(seen[later].field("x-session-token1")) << "for good, also back at home";
    EXPECT_TRUE(seen[later].field("Content-Type"));
    EXPECT_EQ(seen[later].method, "POST");
  }
}

TYPED_TEST_P(HttpClientContract, RedirectsThatNeverEndFail) {
  this->platform.script("/loop", {.status = 302, .location = this->platform.address("/loop")});
  EXPECT_EQ(this->exchange(this->post("/loop")).back(), "failed");
  EXPECT_LE(this->platform.seen().size(), 25u);
  EXPECT_GE(this->platform.seen().size(), 15u);
}

TYPED_TEST_P(HttpClientContract, RefusesAHeaderThatWouldBreakTheLineAndAnAddressThatIsNotSecure) {
  for (const auto& [name, value] : Fields{{"x-token", "a\r\nx-evil: b"},
                                          {"x-token", "a\nb"},
                                          {"x-token", std::string("a\0b", 3)},
                                          {"x-to\r\nken", "a"}}) {
    HttpRequest request = this->post("/ok");
    request.headers.emplace_back(name, value);
    EXPECT_EQ(this->exchange(request), (Events{"failed"}));
  }
  HttpRequest plain = this->post("/ok");
  plain.url.erase(plain.url.find("https") + 4, 1);
  EXPECT_EQ(this->exchange(plain), (Events{"failed"}));
  EXPECT_TRUE(this->platform.seen().empty());
}

TYPED_TEST_P(HttpClientContract, ANoOrAnExceptionOfTheDelegateStopsItsOwnExchangeOnly) {
  using Answer = RecordingDelegate::Answer;
  this->platform.script("/body", {.body = std::string(100'000, 'b')});
  const auto under = this->beginSilent();
  for (const Answer& refuse : {Answer([] { return false; }), Answer([]() -> bool { throw 1; })}) {
    for (const auto& [question, events] :
         {std::pair{&RecordingDelegate::onRequest, Events{"stopped"}},
          {&RecordingDelegate::onResponse, Events{"response 200", "stopped"}},
          {&RecordingDelegate::onData, Events{"response 200", "data", "stopped"}}}) {
      RecordingDelegate one;
      one.*question = refuse;
      perform(this->client, this->post("/body"), one);
      EXPECT_EQ(one.events, events);
      EXPECT_LE(one.pieces, 1);
      EXPECT_EQ(this->exchange(this->post("/ok")).back(), "complete") << "the next one";
    }
  }
  this->client.close();
  this->awaitBackground();
  EXPECT_EQ(under->events, (Events{"response 200", "data", "closed"}));
}

TYPED_TEST_P(HttpClientContract, ADelegateMayPerformAnExchangeOfItsOwn) {
  this->delegate->onResponse = [this] {
    RecordingDelegate inner;
    perform(this->client, this->post("/ok"), inner);
    return inner.events.back() == "complete";
  };
  perform(this->client, this->post("/ok"), *this->delegate);
  EXPECT_EQ(this->delegate->events, (Events{"response 200", "data", "complete"}));
}

TYPED_TEST_P(HttpClientContract, CloseEndsEveryExchangeAndThoseThatFollow) {
  this->exchange(this->post("/ok"));
  const auto first = this->beginSilent();  // over the kept connection, where nothing else wakes it
  const auto second = this->beginSilent();
  const SteadyTime before = this->platform.clock().steadyNow();
  this->client.close();
  this->awaitBackground();
  EXPECT_LT(this->platform.clock().steadyNow() - before, std::chrono::seconds(30));
  for (const auto& one : {first, second}) {
    EXPECT_EQ(one->events, (Events{"response 200", "data", "closed"}));
  }
  const std::size_t sent = this->platform.seen().size();
  EXPECT_EQ(this->exchange(this->post("/ok")), Events{"closed"});
  EXPECT_EQ(this->platform.seen().size(), sent);
  this->client.close();
}

REGISTER_TYPED_TEST_SUITE_P(
    HttpClientContract, TellsWhatArrivesAndHowItEndsAndSendsNothingTwice,
    SendsMethodHeadersInTheirOrderAndBody, SilenceEndsAtTheDeadlineWithWhatWasReportedBefore,
    ARedirectIsFollowedAndReported, OnlyTheContentTypeFollowsToAnotherHostAndTheTokensStayOut,
    RedirectsThatNeverEndFail, RefusesAHeaderThatWouldBreakTheLineAndAnAddressThatIsNotSecure,
    ANoOrAnExceptionOfTheDelegateStopsItsOwnExchangeOnly, ADelegateMayPerformAnExchangeOfItsOwn,
    CloseEndsEveryExchangeAndThoseThatFollow);

}  // namespace orlix
