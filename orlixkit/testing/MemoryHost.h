// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orlixkit/host/Host.h"
#include "orlixkit/testing/FakeWebView.h"
#include "orlixkit/testing/MemoryBundle.h"
#include "orlixkit/testing/MemoryDevice.h"
#include "orlixkit/testing/MemoryLocationManager.h"
#include "orlixkit/testing/MemoryLog.h"
#include "orlixkit/testing/MemoryUserDefaults.h"
#include "orlixkit/testing/ScriptedHttpClient.h"
#include "orlixkit/testing/TestUser.h"
#include "orlixkit/testing/VirtualClock.h"
#include "orlixkit/testing/VirtualQueues.h"
#include "orlixkit/testing/VirtualWorld.h"

namespace orlix {

/// Options of a MemoryHost.
struct MemoryHostSettings {
  /// Installs the host. A test of an upper floor passes `installOrlixKit`, which fills the
  /// storyboard.
  std::function<void(std::shared_ptr<Host>)> install = Host::install;
  /// The store of an earlier host, to play a restart; a new, empty one when absent.
  std::shared_ptr<MemoryUserDefaults> userDefaults = {};
  /// Chooses the task to run next; see VirtualWorld.
  Chooser chooser = {};
  bool timeCompetes = false;
  bool preemptive = false;
  /// Wraps or replaces some of the ports.
  std::function<void(Ports&)> adapt = {};
  bool hasLocationManager = true;
  bool hasWebViews = true;
  Deployment deployment{"https://live.example/vello", "https://test.example/vello",
                        "https://www.example/terms/tavlo.html"};
};

/// A complete device for a test: an installed host of memory ports in virtual time, with one window
/// whose root is a plain controller. The destructor shuts the host down and uninstalls it; it ends
/// the process with a message if a thread or an exchange is left.
///
///     MemoryHost host({.install = installOrlixKit});
///     host.connections().on("/session", ServerReply::of(200, "{…}"));
///     facade->checkout({…, .controller = host.root(), …});
///     host.runUntil([&] { return host.topController()->identifier() == "Product"; });
///     host.user().type("pinField", "1234");
///     host.user().tap("payButton");
///
/// Main thread. One at a time.
class MemoryHost {
 public:
  explicit MemoryHost(MemoryHostSettings settings = {});
  ~MemoryHost();
  MemoryHost(const MemoryHost&) = delete;
  MemoryHost& operator=(const MemoryHost&) = delete;

  VirtualWorld& world() { return *world_; }
  VirtualClock& clock() { return *clock_; }
  MainQueue& mainQueue() { return *host_->ports().mainQueue; }
  BackgroundQueues& backgroundQueues() { return *host_->ports().backgroundQueues; }
  ScriptedHttpClient& connections() { return *connections_; }
  const std::shared_ptr<MemoryUserDefaults>& userDefaults() const { return userDefaults_; }
  MemoryDevice& device() { return *device_; }
  MemoryBundle& bundle() { return *bundle_; }
  MemoryLocationManager& locationManager() { return *locationManager_; }
  FakeWebViews& webViews() { return *webViews_; }
  MemoryLog& log() { return *log_; }
  Application& application() { return host_->application(); }
  /// The host application's screen, which presents the library's.
  const std::shared_ptr<ViewController>& root() const { return root_; }

  // Time and work; see VirtualWorld.
  void runUntil(const std::function<bool()>& done) { world_->runUntil(done); }
  void runUntilIdle() { world_->runUntilIdle(); }
  void runFor(Duration span) { world_->runFor(span); }
  /// Runs until the top screen has this identifier, and nothing moves in or out over it any more.
  void runUntilScreen(const std::string& identifier);
  /// Runs until an alert with this title is on top.
  void runUntilAlert(const std::string& title);
  /// Schedules a user's action in `delay`, independent of the main queue's order.
  void later(Duration delay, Task userAction);

  // The user; see TestUser.
  TestUser& user() { return user_; }
  std::shared_ptr<ViewController> topController() const { return user_.topController(); }
  void type(const std::string& outlet, const std::string& text) { user_.type(outlet, text); }
  void tap(const std::string& name) { user_.tap(name); }
  void pressAlert(const std::string& title) { user_.pressAlert(title); }

  const std::vector<RecordedRequest>& requests() const { return connections_->requests(); }

  /// Ends all work, as at the end of the application. May be called before the destructor.
  void shutdown() { host_->shutdown(); }

 private:
  std::shared_ptr<VirtualWorld> world_ = std::make_shared<VirtualWorld>();
  std::shared_ptr<VirtualClock> clock_ = std::make_shared<VirtualClock>(world_);
  std::shared_ptr<ScriptedHttpClient> connections_ = std::make_shared<ScriptedHttpClient>(world_);
  std::shared_ptr<MemoryUserDefaults> userDefaults_;
  std::shared_ptr<MemoryDevice> device_ = std::make_shared<MemoryDevice>();
  std::shared_ptr<MemoryBundle> bundle_ = std::make_shared<MemoryBundle>();
  std::shared_ptr<MemoryLocationManager> locationManager_ =
      std::make_shared<MemoryLocationManager>();
  std::shared_ptr<VirtualMainQueue> mainQueue_ = std::make_shared<VirtualMainQueue>(world_);
  std::shared_ptr<FakeWebViews> webViews_ = std::make_shared<FakeWebViews>(mainQueue_);
  std::shared_ptr<MemoryLog> log_ = std::make_shared<MemoryLog>();
  std::shared_ptr<ViewController> root_ = std::make_shared<ViewController>();
  Ports portsFor(const MemoryHostSettings& settings) const;
  std::shared_ptr<Host> host_;
  TestUser user_;
};

}  // namespace orlix
