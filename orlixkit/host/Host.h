// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>
#include <vector>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/Bundle.h"
#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/Device.h"
#include "orlixkit/ports/HttpClient.h"
#include "orlixkit/ports/LocationManager.h"
#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/SystemLog.h"
#include "orlixkit/ports/UserDefaults.h"
#include "orlixkit/ports/WebView.h"
#include "orlixkit/ui/Application.h"

namespace orlix {

/// Addresses of one deployment of the library.
struct Deployment {
  std::string liveBase;      ///< https address whose path is "/vello", without a trailing slash
  std::string testBase;      ///< the same for the test system
  std::string termsAddress;  ///< https address of the terms page, path "/terms/tavlo.html"
};

/// One of each port. All but `locationManager` and `webViews` are required.
struct Ports {
  std::shared_ptr<SystemLog> log;
  std::shared_ptr<Clock> clock;
  std::shared_ptr<MainQueue> mainQueue;
  std::shared_ptr<BackgroundQueues> backgroundQueues;
  std::shared_ptr<HttpClient> httpClient;
  std::shared_ptr<UserDefaults> userDefaults;
  std::shared_ptr<Device> device;
  std::shared_ptr<Bundle> bundle;
  std::shared_ptr<LocationManager> locationManager;
  std::shared_ptr<WebViews> webViews;
};

/// The environment that the library runs in: one of each port, the deployment's addresses, the
/// application's user interface, and the library's process-wide objects, which it owns.
///
/// Installed once by the application, on the main thread, before any other call of the library.
class Host {
 public:
  /// Throws std::invalid_argument when a required port is missing.
  Host(Ports ports, Deployment deployment);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  static void install(std::shared_ptr<Host> host);
  /// Shuts the installed host down and releases it.
  static void uninstall();
  /// Throws std::logic_error when none is installed.
  static Host& current();
  static bool isInstalled();

  /// Number of this host within the process, from 1 in order of construction.
  std::uint64_t number() const { return number_; }
  const Ports& ports() const { return ports_; }
  const Deployment& deployment() const { return deployment_; }
  Application& application() { return *application_; }

  /// Ends the flow in progress as failed, after a step on the main thread ran out of memory or
  /// could not read the store and may be incomplete. Set by the library. Called again if it runs
  /// out of memory itself.
  Task endFlow;

  /// The process-wide object of this type, constructed once, on first use, and released with the
  /// host. Any thread.
  template <class T>
  T& shared();

  /// Adds a task that `shutdown` runs last, on its thread, when no other task of the host is
  /// running: use it to complete work that the closed queues have dropped. Exceptions are logged.
  /// Any thread.
  void atShutdown(Task task);

  /// Ends all work: drops pending main tasks, wakes sleeping and waiting tasks, aborts requests and
  /// joins the background threads. No callback is made afterwards. Main thread. May be called
  /// again.
  void shutdown();

 private:
  Ports ports_;
  Deployment deployment_;
  std::uint64_t number_;
  std::shared_ptr<Application> application_;
  std::recursive_mutex sharedLock_;
  std::map<std::type_index, std::shared_ptr<void>> shared_;
  std::vector<Task> atShutdown_;  // guarded by sharedLock_
  bool shutDown_ = false;
};

template <class T>
T& Host::shared() {
  const std::lock_guard lock(sharedLock_);
  std::shared_ptr<void>& slot = shared_[std::type_index(typeid(T))];
  if (!slot) {
    slot = std::make_shared<T>();
  }
  return *static_cast<T*>(slot.get());
}

/// Writes one line to the installed host's log; without a host, or memory, it is dropped.
void log(std::string_view line);
/// Logs an uncaught exception: where it was caught and its text. Null: the installed host's log.
void logFailure(std::string_view where, std::string_view what, SystemLog* log = nullptr) noexcept;
/// Runs the installed host's `endFlow`. Main thread.
void endFlow() noexcept;

}  // namespace orlix
