// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/posix/PosixPlatform.h"
#include "tests/posix/TlsServer.h"

namespace orlix {

/// Judges the chain by its anchors, as the transport does.
class JudgingDelegate : public RecordingDelegate {
 public:
  explicit JudgingDelegate(std::vector<Bytes> trusted) : anchors(std::move(trusted)) {}

  bool trusts(ServerTrust* trust) override {
    ++challenges;
    if (onChallenge) {
      onChallenge();
    }
    return trust->evaluate(anchors, false, refusal);
  }

  const std::vector<Bytes> anchors;
  Task onChallenge;  ///< inside the handshake
  std::string refusal;
  int challenges = 0;
};

/// A real client, for tests that bring a server of their own.
class HttpsFixture : public testing::Test {
 protected:
  static const Identity& root() {
    static const Identity made = makeIdentity({.commonName = "Test root", .authority = true});
    return made;
  }
  static const Identity& serverIdentity() {
    static const Identity made = makeIdentity({}, &root());
    return made;
  }
  /// Answers every request, and counts it.
  TlsServer::Serve answerAll = [this](TlsConnection& connection) {
    while (connection.read()) {
      ++requests;
      connection.write(httpAnswer(200, "", "ok"));
    }
  };
  static HttpRequest post(const std::string& url, const std::string& body = "{}") {
    HttpRequest request;
    request.url = url;
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}, {"x-session-token1", "T1"}};
    request.body = SecretBytes(toBytes(body));
    return request;
  }
  /// What one exchange brings; by a new delegate.
  Events exchange(const HttpRequest& request) {
    delegate = std::make_shared<JudgingDelegate>(std::vector<Bytes>{root().der()});
    perform(client, request, *delegate);
    return delegate->events;
  }

  PosixPlatform platform;
  HttpClient& client = platform.httpClient();
  std::shared_ptr<JudgingDelegate> delegate;
  std::atomic<int> requests = 0;
};

}  // namespace orlix
