// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/securecode/OXSecureCodeViewController.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

inline const std::string kIssuersPage = "<html><input id=otp></html>";
inline const std::string kTerminationPage =
    R"(<html><script>Vello.handle("PARES")</script></html>)";
inline const std::string kBought = R"({"status":"SUCCESS","transactionId":4711})";

/// A checkout at an issuer's page, with a wallet server whose answers are good unless a test
/// changes them.
struct Issuer : Phone {
  explicit Issuer(MemoryHostSettings settings = {}) : Phone(std::move(settings)) {
    for (const char* path : {"/card/scUrl", "/card/get3dsValidateUrl"}) {
      wallet.always(path, R"({"cardSupported":true,"secureCodeId":31,)"
                          R"("url":"https://issuer.example/acs","payload":"PAREQ"})");
    }
    wallet.purchase = kBought;
    host.webViews().onLoad = [](FakeWebView& view) { view.finishNavigation(kIssuersPage); };
  }
  void begin() {
    OXSession::reset();
    session = OXSession::currentSession();
    session->presentingController = host.root();
    session->delegate = app;
    session->delegate3DSecure = app;
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
  OXSecureCodeViewController& secureCodeScreen() {
    const auto top = host.topController();
    return dynamic_cast<OXSecureCodeViewController&>(
        top->identifier().empty() ? *top->presentingViewController() : *top);
  }
  void returnFromIssuer() {
    page().finishNavigation(kTerminationPage);
    host.runFor(1s);
  }

  std::shared_ptr<OXSession> session;
};

}  // namespace orlix::test
