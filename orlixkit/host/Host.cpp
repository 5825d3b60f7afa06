// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/host/Host.h"

#include <atomic>
#include <new>
#include <stdexcept>

#include "orlixkit/host/RunningTasks.h"

namespace orlix {

namespace {

std::shared_ptr<Host>& installed() {
  static std::shared_ptr<Host> host;
  return host;
}

std::uint64_t nextNumber() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

void require(bool present, const std::string& port) {
  if (!present) {
    throw std::invalid_argument("Host: the port " + port + " is missing");
  }
}

}  // namespace

Host::Host(Ports ports, Deployment deployment)
    : ports_(std::move(ports)), deployment_(std::move(deployment)), number_(nextNumber()) {
  require(ports_.log != nullptr, "log");
  require(ports_.clock != nullptr, "clock");
  require(ports_.mainQueue != nullptr, "mainQueue");
  require(ports_.backgroundQueues != nullptr, "backgroundQueues");
  require(ports_.httpClient != nullptr, "httpClient");
  require(ports_.userDefaults != nullptr, "userDefaults");
  require(ports_.device != nullptr, "device");
  require(ports_.bundle != nullptr, "bundle");
  application_ =
      std::make_shared<Application>(UiServices{ports_.mainQueue, ports_.log, runCallOut});
}

Host::~Host() { shutdown(); }

void Host::install(std::shared_ptr<Host> host) {
  if (installed()) {
    throw std::logic_error("Host::install: a host is installed already");
  }
  installed() = std::move(host);
}

void Host::uninstall() {
  if (!installed()) {
    return;
  }
  installed()->shutdown();
  // Released only after the slot is empty: destructors that run with the host's may still call
  // `log`.
  const std::shared_ptr<Host> last = installed();
  last->application_->clear();
  last->shared_.clear();
  installed().reset();
}

Host& Host::current() {
  if (!installed()) {
    throw std::logic_error("Host::current: no host is installed; call Host::install first");
  }
  return *installed();
}

bool Host::isInstalled() { return installed() != nullptr; }

void Host::shutdown() {
  if (shutDown_) {
    return;
  }
  shutDown_ = true;
  // Close the main queue first, so that results of the woken background tasks are dropped.
  ports_.mainQueue->close();
  ports_.httpClient->close();
  ports_.backgroundQueues->close();
  std::vector<Task> last;
  {
    const std::lock_guard lock(sharedLock_);
    last.swap(atShutdown_);
  }
  for (const Task& task : last) {
    runLoggedInBackground(task);  // on this thread; used here only to log exceptions
  }
}

void Host::atShutdown(Task task) {
  const std::lock_guard lock(sharedLock_);
  atShutdown_.push_back(std::move(task));
}

void log(std::string_view line) {
  if (!installed()) {
    return;
  }
  try {
    installed()->ports().log->write(line);
  } catch (const std::bad_alloc&) {
    return;  // a failure to log must not affect the caller
  }
}

void logFailure(std::string_view where, std::string_view what, SystemLog* own) noexcept {
  try {
    const std::string line =
        "OrlixKit: uncaught on " + std::string(where) + ": " + std::string(what);
    own != nullptr ? own->write(line) : log(line);
  } catch (...) {
    return;
  }
}

void endFlow() noexcept {
  if (!installed() || !installed()->endFlow) {
    return;
  }
  // The failed step has released its memory, so the first attempt usually succeeds.
  constexpr int kMostAttempts = 10;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    try {
      installed()->endFlow();
      return;
    } catch (const std::bad_alloc&) {
      continue;
    } catch (const std::exception& failure) {
      logFailure("the main thread", failure.what());
      return;
    } catch (...) {
      return;
    }
  }
}

}  // namespace orlix
