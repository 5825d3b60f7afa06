// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/testing/MemoryHost.h"
#include "tests/phone/Answers.h"
#include "tests/phone/HostApp.h"

namespace orlix::test {

using namespace std::chrono_literals;

inline const std::string kConnectionProblem =
    "Connection problem: Please check your network connection and try again.";

enum class Entry { checkout, preRegister, wallet };

/// A phone in virtual time with the library, a host application and a wallet server. One at a time.
struct Phone {
  explicit Phone(MemoryHostSettings settings = {});
  /// Before the wallet goes, which its requests ask.
  ~Phone() { host.shutdown(); }
  Phone(const Phone&) = delete;
  Phone& operator=(const Phone&) = delete;

  MemoryHost host;
  ScriptedWallet wallet{host.connections()};
  std::shared_ptr<HostApp> app = std::make_shared<HostApp>();
  std::shared_ptr<OXOrlix> facade = OXOrlix::make();
  /// The main thread waits where the terms are accepted, and nowhere else: a test fails otherwise.
  bool mainMayWait = false;

  /// An entry call on the test system, by the facade that is there.
  void checkout(double amount = 0);
  void showPaymentScreen(double amount = 0);
  /// Types the PIN and presses the button; the answers are still to come.
  void pay(const std::string& pin = "1234");
  /// An entry call by a new facade; with a screen, up to that one.
  void begin(Entry entry, const std::string& screen = "", const std::string& preMSISDN = "");
  /// The same for an application of its own, which takes the place of `app`.
  void beginAnew(Entry entry);
  /// An enrolment up to the screen for the number, or from there to the one for the code.
  void beginActivation(Entry entry, const std::string& preMSISDN);
  void beginEnrolment(Entry entry);
  /// A flow up to the form for a card.
  void beginAddCard(Entry entry);
  /// Fills in number and name of the form for a card, and proceeds.
  void proceedWithCard(const std::string& number = "4000123412341234");
  /// Screens that other floors would show, so that a test sees which one was asked for.
  void addPlainScreens(const std::vector<std::string>& identifiers);

  /// A touch, or an alert's button, and all that comes of it.
  void tap(const std::string& name);
  void press(const std::string& button);
  /// Performs an action of the top screen, whether or not a user could touch it.
  void act(const std::string& name) { host.topController()->performAction(name); }
  void runUntilOutcome() {
    host.runUntil([this] { return !app->heard.empty(); });
  }

  std::string screen() const { return host.topController()->identifier(); }
  std::string shown(const std::string& outlet) const {
    return host.topController()->outletNamed(outlet)->shownText();
  }
  bool hidden(const std::string& outlet) const {
    return host.topController()->outletNamed(outlet)->isOutOfSight();
  }
  /// "title: message" of the alert on top; empty when there is none.
  std::string alert() const;
  ProgressIndicator& indicator() { return host.application().progressIndicator(); }
  bool busy() { return indicator().visible(); }
};

}  // namespace orlix::test
