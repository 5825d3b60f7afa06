// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/MemoryHost.h"

#include <cstdio>
#include <cstdlib>

namespace orlix {

namespace {

std::shared_ptr<MemoryUserDefaults> storeOf(const MemoryHostSettings& settings) {
  return settings.userDefaults ? settings.userDefaults : std::make_shared<MemoryUserDefaults>();
}

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "MemoryHost: %s\n", what);
    std::abort();
  }
}

}  // namespace

Ports MemoryHost::portsFor(const MemoryHostSettings& settings) const {
  Ports ports{.log = log_,
              .clock = clock_,
              .mainQueue = mainQueue_,
              .backgroundQueues = std::make_shared<VirtualBackgroundQueues>(world_),
              .httpClient = connections_,
              .userDefaults = userDefaults_,
              .device = device_,
              .bundle = bundle_,
              .locationManager = settings.hasLocationManager ? locationManager_ : nullptr,
              .webViews = settings.hasWebViews ? webViews_ : nullptr};
  if (settings.adapt) {
    settings.adapt(ports);
  }
  return ports;
}

MemoryHost::MemoryHost(MemoryHostSettings settings)
    : userDefaults_(storeOf(settings)),
      host_(std::make_shared<Host>(portsFor(settings), settings.deployment)),
      user_(host_->application()) {
  world_->setChooser(std::move(settings.chooser));
  world_->setTimeCompetes(settings.timeCompetes);
  world_->setPreemptive(settings.preemptive);
  settings.install(host_);
  application().showMainWindow(root_);
}

MemoryHost::~MemoryHost() {
  Host::uninstall();
  require(world_->threadCount() == 0, "a thread is left after the shutdown");
  require(connections_->underWay() == 0, "an exchange is left after the shutdown");
}

void MemoryHost::runUntilScreen(const std::string& identifier) {
  runUntil([&] {
    const std::shared_ptr<ViewController> top = topController();
    return top && top->identifier() == identifier && top->hasAppeared() &&
           !top->presentedViewController();
  });
}

void MemoryHost::runUntilAlert(const std::string& title) {
  runUntil([&] {
    const std::shared_ptr<AlertController> alert = user_.topAlert();
    return alert && alert->title() == title && alert->hasAppeared();
  });
}

void MemoryHost::later(Duration delay, Task userAction) {
  world_->asMainEvent(std::move(userAction), delay);
}

}  // namespace orlix
