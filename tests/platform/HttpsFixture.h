#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/PosixPlatform.h"
#include "tests/platform/TlsServer.h"

namespace orlix {

/// Judges the chain by its anchors, as the transport does.
class JudgingDelegate : public RecordingDelegate {
 public:
  JudgingDelegate(MainQueue& queue, std::vector<Bytes> trusted)
      : RecordingDelegate(queue), anchors(std::move(trusted)) {}

  void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) override {
    ++challenges;
    if (onChallenge) {
      onChallenge();
    }
    challenge.serverTrust()->setAnchorCertificates(anchors);
    challenge.serverTrust()->setAnchorCertificatesOnly(false);
    if (challenge.serverTrust()->evaluate(refusal)) {
      challenge.useCredentialForTrust();
    } else {
      challenge.cancel();
    }
  }

  const std::vector<Bytes> anchors;
  std::function<void()> onChallenge;  ///< inside the handshake, on the delegate queue
  std::string refusal;
  int challenges = 0;
};

/// Real connections, for tests that bring a server of their own.
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
  static void answerAll(TlsConnection& connection) {
    while (connection.read() && connection.write(httpAnswer(200, "", "ok"))) {
    }
  }
  static std::chrono::nanoseconds timed(const Task& task) {
    const auto before = std::chrono::steady_clock::now();
    task();
    return std::chrono::steady_clock::now() - before;
  }

  static UrlRequest post(const std::string& url, const std::string& body = "{}") {
    UrlRequest request;
    request.url = url;
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}, {"x-session-token1", "T1"}};
    request.body = SecretBytes(toBytes(body));
    return request;
  }
  std::shared_ptr<JudgingDelegate> newDelegate() {
    return std::make_shared<JudgingDelegate>(platform.mainQueue(),
                                             std::vector<Bytes>{root().der()});
  }
  std::shared_ptr<UrlConnection> start(UrlRequest request,
                                       std::shared_ptr<UrlConnectionDelegate> to) {
    auto connection = connections.newConnection(std::move(request), std::move(to));
    connection->setDelegateQueue(platform.backgroundQueues().newOperationQueue());
    connection->start();
    return connection;
  }
  /// The events of one exchange, from its start to its end.
  Events exchange(UrlRequest request) {
    delegate = newDelegate();
    start(std::move(request), delegate);
    delegate->await();
    return delegate->events;
  }

  PosixPlatform platform;
  UrlConnections& connections = platform.urlConnections();
  std::shared_ptr<JudgingDelegate> delegate;
};

}  // namespace orlix
