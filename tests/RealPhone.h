// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <boost/json.hpp>

#include "orlixkit/host/Host.h"
#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/testing/MemoryLog.h"
#include "sandbox/Sandbox.h"
#include "tests/TemporaryFolder.h"

namespace orlix::test {

/// The real ports (TLS, threads, a database file) and the sandbox in this process.
class RealPhone {
 public:
  using Install = std::function<void(std::shared_ptr<Host>)>;

  RealPhone() { server.start(); }
  ~RealPhone() { Host::uninstall(); }
  RealPhone(const RealPhone&) = delete;
  RealPhone& operator=(const RealPhone&) = delete;

  /// Puts a host in place that trusts `anchor` besides the system's roots; "" for none.
  void install(const Install& install, const std::string& anchor) {
    PosixOptions options;
    options.applicationName = "orlix-tests";
    options.stateDirectory = state.path();
    if (!anchor.empty()) {
      options.anchorFile = anchor;
    }
    Ports ports = makePosixPorts(options);
    ports.log = log;
    {
      const std::lock_guard held(lock_);
      mainQueue_ = ports.mainQueue;
    }
    install(
        std::make_shared<Host>(ports, Deployment{server.base(), server.base(), server.terms()}));
  }
  void runUntil(const std::function<bool()>& done) {
    Host::current().ports().mainQueue->runUntil(done);
  }
  /// Until so many requests to paths with this end have arrived.
  void runUntilAsked(const std::string& pathEnd, int times) {
    runUntil([&] {
      const std::lock_guard held(lock_);
      int asked = 0;
      for (std::size_t at = paths_.find(pathEnd + "\n"); at != std::string::npos;
           at = paths_.find(pathEnd + "\n", at + 1)) {
        ++asked;
      }
      return asked >= times;
    });
  }
  boost::json::object control(const std::string& path) {
    return boost::json::parse(server.control("GET", path)).as_object();
  }
  /// One of the sandbox's counts.
  std::int64_t counted(const char* name) {
    return control("/control/state").at(name).to_number<std::int64_t>();
  }

  TemporaryFolder state;
  std::shared_ptr<MemoryLog> log = std::make_shared<MemoryLog>();

 private:
  void heard(std::string_view line) {
    const auto event = boost::json::parse({line.data(), line.size()}).as_object();
    const std::lock_guard held(lock_);
    if (const auto* path = event.if_contains("path")) {
      paths_ += std::string(path->as_string()) + "\n";
    }
    if (mainQueue_) {
      mainQueue_->async([] {});  // so that who waits there looks again
    }
  }

  std::mutex lock_;
  std::shared_ptr<MainQueue> mainQueue_;
  std::string paths_;

 public:
  sandbox::Sandbox server{
      {.enrolled = true, .onEvent = [this](std::string_view line) { heard(line); }}};
};

}  // namespace orlix::test
