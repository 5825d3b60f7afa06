#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>
#include <vector>

#include "orlixkit/platform/BackgroundQueues.h"
#include "orlixkit/platform/Bundle.h"
#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/Device.h"
#include "orlixkit/platform/HttpClient.h"
#include "orlixkit/platform/LocationManager.h"
#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/SystemLog.h"
#include "orlixkit/platform/UserDefaults.h"
#include "orlixkit/platform/WebView.h"
#include "orlixkit/platform/ui/Application.h"

namespace orlix {

/// Values that differ from one deployment of the library to the next.
struct Deployment {
  std::string liveBase;      ///< https address whose path is "/vello", without a trailing slash
  std::string testBase;      ///< the same of the test system
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

/// The phone, as the library sees it: one of each port, the deployment's values, the application's
/// user interface, and the library's own process-wide objects, which live and die with it.
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
  /// Shuts the installed host down and forgets it.
  static void uninstall();
  /// Throws std::logic_error when none is installed.
  static Host& current();
  static bool isInstalled();

  /// Tells the hosts of a process apart, from 1 in the order in which they were made.
  std::uint64_t number() const { return number_; }
  const Ports& ports() const { return ports_; }
  const Deployment& deployment() const { return deployment_; }
  Application& application() { return *application_; }

  /// Ends the flow in progress as failed: a step of it, on the main thread, found no memory or no
  /// readable store and may be half done. Set by the library. Called again when it finds no memory
  /// itself.
  Task endFlow;

  /// The process-wide object of this type, made on first use (once, from whichever thread asks
  /// first) and released with the host.
  template <class T>
  T& shared();

  /// Adds a task that `shutdown` runs last, on its thread, when no other task of the host runs any
  /// more: the place to finish what the closed queues have dropped. What it throws is logged. Any
  /// thread.
  void atShutdown(Task task);

  /// Ends all work: pending main tasks are dropped, sleeping and waiting tasks are woken, requests
  /// are cut off, background threads have ended when it returns. Nobody is called back afterwards.
  /// Main thread. May be called again.
  void shutdown();

 private:
  Ports ports_;
  Deployment deployment_;
  std::uint64_t number_;
  std::shared_ptr<Application> application_ = std::make_shared<Application>();
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
/// The line that tells what a task has thrown; to `log`, or the installed host's when none.
void logFailure(std::string_view where, std::string_view what, SystemLog* log = nullptr) noexcept;
/// Runs the installed host's `endFlow`. Main thread.
void endFlow() noexcept;

}  // namespace orlix
