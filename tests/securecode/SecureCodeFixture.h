#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix {

class HostEar : public OXOrlixDelegate, public OX3DSecureOrlixDelegate {
 public:
  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    heard.push_back("succeeded " + reference);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    heard.push_back("failed " + reference);
  }
  void orlixError(int code) override { heard.push_back("error " + std::to_string(code)); }
  void orlixUserDidCancel() override { heard.push_back("cancelled"); }
  void orlixUserRegistered() override { heard.push_back("registered"); }
  void orlixUserCompletedWallet() override { heard.push_back("wallet"); }
  void orlixInvalidCode() override { heard.push_back("invalid code"); }
  void auth3DsValidated() override { heard.push_back("validated"); }

  std::vector<std::string> heard;
};

inline constexpr const char* kIssuersPage = "<html><input id=otp></html>";
inline constexpr const char* kTerminationPage =
    R"(<html><script>Vello.handle("PARES")</script></html>)";

/// A checkout that stands before an issuer's page, with a wallet server that answers well unless
/// told otherwise.
class SecureCodeRun {
 public:
  using Ear = std::vector<std::string>;

  explicit SecureCodeRun(MemoryHostSettings settings = {.install = installOrlixKit})
      : host(std::move(settings)) {
    auto& server = host.connections();
    server.on("/session/new", ServerReply::of(200, R"({"sessionId":"a","sessionId2":"b",
        "pinKey":"AAECAwQFBgcICQoLDA0ODw==","activated":true,"allowConnection":true})"));
    const auto page = ServerReply::of(200, R"({"cardSupported":true,"secureCodeId":31,
        "url":"https://issuer.example/acs","payload":"PAREQ"})");
    server.on("/card/scUrl", page);
    server.on("/card/get3dsValidateUrl", page);
    const auto bought = ServerReply::of(200, R"({"status":"SUCCESS","transactionId":4711})");
    server.on("/purchase", bought);
    server.on("/auth3Ds", bought);
    server.on("/receipt/poll", ServerReply::of(200, R"({"status":"SUCCESS"})"));
    server.on("/card/validate", ServerReply::of(200, R"({"message":"ok"})"));
    host.webViews().onLoad = [](FakeWebView& view) { view.finishNavigation(kIssuersPage); };
  }

  void begin() {
    OXSession::reset();
    session = OXSession::currentSession();
    session->presentingController = host.root();
    session->delegate = ear;
    session->delegate3DSecure = ear;
    session->codeInfo.emplace().code = "CODE";
    session->cardId = 7;
    session->amount = "12.50";
    session->cvv = SecretString("123");
    OMVello::sharedOMVello().initSessionWithLibKey("key", 1, nullptr);
    host.runUntilIdle();
  }
  void showPaying() {
    begin();
    session->showSecureCodeScreen();
    host.runUntilIdle();
  }
  void showAuthenticating() {
    begin();
    session->show3DAuthSecureCodeScreen();
    host.runUntilIdle();
  }
  FakeWebView& page() { return *host.webViews().last(); }
  void returnFromIssuer() {
    page().finishNavigation(kTerminationPage);
    host.runFor(std::chrono::seconds(1));
  }
  std::size_t sent(const std::string& part) { return host.connections().requestsTo(part).size(); }
  bool isOver() { return host.root()->presentedViewController() == nullptr; }

  std::shared_ptr<HostEar> ear = std::make_shared<HostEar>();
  MemoryHost host;
  std::shared_ptr<OXSession> session;
};

class SecureCode : public testing::Test, public SecureCodeRun {};

}  // namespace orlix
