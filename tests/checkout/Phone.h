#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/platform/memory/MemoryHost.h"
#include "tests/checkout/FakeWallet.h"

namespace orlix::test {

/// The host application: writes down what it hears.
class HostApp : public OXOrlixDelegate {
 public:
  std::vector<std::string> heard;
  /// What the application does when it hears something.
  std::function<void()> onOutcome;

  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    hear("succeeded " + reference);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    hear("failed " + reference);
  }
  void orlixError(int code) override { hear("error " + std::to_string(code)); }
  void orlixUserDidCancel() override { hear("cancelled"); }
  void orlixUserRegistered() override { hear("registered"); }
  void orlixUserCompletedWallet() override { hear("wallet done"); }
  void orlixInvalidCode() override { hear("invalid code"); }

 private:
  void hear(std::string what) {
    heard.push_back(std::move(what));
    if (onOutcome) {
      onOutcome();
    }
  }
};

using Heard = std::vector<std::string>;

/// A phone in virtual time with the library, a host application and a wallet server.
struct Phone {
  explicit Phone(MemoryHostSettings settings = {}) : host(withLibrary(std::move(settings))) {}
  /// Before the wallet goes, which its requests ask.
  ~Phone() { host.shutdown(); }
  Phone(const Phone&) = delete;
  Phone& operator=(const Phone&) = delete;

  MemoryHost host;
  FakeWallet wallet{host.connections()};
  std::shared_ptr<HostApp> app = std::make_shared<HostApp>();
  std::shared_ptr<OXOrlix> facade = OXOrlix::make();

  /// An entry call on the test system.
  void checkout(double amount = 0) {
    facade->checkout({.code = "C-1",
                      .amount = amount,
                      .apiKey = "key",
                      .system = kTestSystem,
                      .controller = host.root(),
                      .delegate = app});
  }
  void showPaymentScreen(double amount = 0) {
    checkout(amount);
    host.runUntilScreen("Product");
  }
  /// Types the PIN and presses the button; the answers are still to come.
  void pay(const std::string& pin = "1234") {
    host.type("pinField", pin);
    host.tap("proceedButton");
  }
  /// Screens that other floors would show, so that a test sees which one was asked for.
  void addPlainScreens(const std::vector<std::string>& identifiers) {
    for (const std::string& identifier : identifiers) {
      host.application().storyboard().add(identifier,
                                          [] { return std::make_shared<ViewController>(); });
    }
  }

  std::string screen() const { return host.topController()->identifier(); }
  std::string shown(const std::string& outlet) const {
    return host.topController()->outletNamed(outlet)->shownText();
  }
  bool hidden(const std::string& outlet) const {
    return host.topController()->outletNamed(outlet)->isOutOfSight();
  }
  /// "title: message" of the alert on top; empty when there is none.
  std::string alert() {
    const auto alert = host.user().topAlert();
    return alert ? alert->title() + ": " + alert->message() : "";
  }
  bool busy() { return host.application().progressIndicator().visible(); }

 private:
  static MemoryHostSettings withLibrary(MemoryHostSettings settings) {
    settings.install = installOrlixKit;
    return settings;
  }
};

inline const std::string kConnectionProblem =
    "Connection problem: Please check your network connection and try again.";

}  // namespace orlix::test
