// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/testing/FakeWebView.h"
#include "orlixkit/testing/MemoryLog.h"
#include "orlixkit/testing/TestUser.h"
#include "tests/TemporaryFolder.h"
#include "tests/faults/SteppedClock.h"
#include "tests/phone/HostApp.h"

namespace orlix::test {

/// Where a wallet server is to be found.
struct ServerAddress {
  std::string base;
  std::string anchor;
};

/// The library over the real ports, with a host application and a user. Two ports are a test's: the
/// clock, which can be stepped, and the web views, whose pages a test plays.
class TlsPhone {
 public:
  /// `folder`: where the store is kept; one that goes with the phone when empty.
  explicit TlsPhone(const ServerAddress& server, const std::filesystem::path& folder = {});
  ~TlsPhone();
  TlsPhone(const TlsPhone&) = delete;
  TlsPhone& operator=(const TlsPhone&) = delete;

  /// An entry call by a new facade.
  void checkout(const std::string& code);
  void wallet();
  /// The payment screen with the card whose number ends so.
  void showPayment(const std::string& code, const std::string& cardHint);

  /// Runs the main queue. `done` is asked after each of its tasks, when the library has come to
  /// rest, and after `look`. Throws when it does not hold after two minutes, which no test needs.
  void runUntil(const std::function<bool()>& done);
  /// Any thread: something has changed outside of the library.
  void look();
  void runUntilScreen(const std::string& identifier);
  void runUntilOutcomeOrAlert();

  std::string screen() const;
  /// Title of the alert on top; empty when there is none.
  std::string alert() const;

  TemporaryFolder state;
  std::shared_ptr<MemoryLog> log = std::make_shared<MemoryLog>();
  std::shared_ptr<Activity> activity;
  std::shared_ptr<SteppedClock> clock;
  std::shared_ptr<FakeWebViews> pages;
  std::shared_ptr<ViewController> root = std::make_shared<ViewController>();
  std::shared_ptr<HostApp> app = std::make_shared<HostApp>();
  std::unique_ptr<TestUser> user;

 private:
  std::shared_ptr<MainQueue> mainQueue_;  ///< past the count
  std::shared_ptr<OXOrlix> facade_;
};

}  // namespace orlix::test
