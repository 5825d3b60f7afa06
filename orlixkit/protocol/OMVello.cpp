// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/OMVello.h"

#include <chrono>
#include <new>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

#include "orlixkit/Version.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/security/OMStorage.h"

namespace orlix {

namespace {

const std::string callingNode = "TALU";

}  // namespace

/// Parameters of one start. Compared by address: only the current start may report.
struct OMVello::Start {
  std::optional<std::string> libKey;
  std::int64_t system = 0;
  std::shared_ptr<OMVelloDelegate> delegate;
  std::shared_ptr<const Flow> flow;
  Serial serial;
  /// Client of the last attempt. Guarded by the driver's lock.
  std::shared_ptr<KCVelloConnection> client;
};

// Tasks capture `this`: the host owns the driver and closes its queues before releasing it.
OMVello::OMVello() : start_(std::make_shared<Start>()) {}

OMVello::~OMVello() = default;

OMVello& OMVello::sharedOMVello() { return Host::current().shared<OMVello>(); }

void OMVello::setEnvironment(std::shared_ptr<OMVelloEnvironment> environment) {
  const std::lock_guard held(lock_);
  environment_ = std::move(environment);
}

void OMVello::initSessionWithLibKey(const std::string& libKey, std::int64_t system,
                                    std::shared_ptr<OMVelloDelegate> delegate) {
  log("OMVello - initSession");
  auto start = std::make_shared<Start>();
  start->libKey = libKey;
  start->system = system;
  start->delegate = std::move(delegate);
  start->flow = environment()->currentFlow();
  start->serial.phoneId = Host::current().ports().device->vendorIdentifier();
  std::shared_ptr<Start> former = start;  // released, with its delegate, outside the lock
  {
    const std::lock_guard held(lock_);
    start_.swap(former);
  }
  tryInitSession();
}

void OMVello::tryInitSession() { tryStart(presentStart()); }

void OMVello::performInitSession() { perform(presentStart()); }

void OMVello::tryStart(const std::shared_ptr<Start>& start) {
  // Made in advance, since it is needed when there is no memory left.
  const Task failed = [this, start] {
    if (isPresent(start)) {
      showRetry(start);
    }
  };
  Host::current().ports().backgroundQueues->global(QualityOfService::userInitiated,
                                                   [this, start, failed] {
                                                     try {
                                                       perform(start);
                                                     } catch (const std::bad_alloc&) {
                                                       deliverToMainQueue(failed);
                                                     }
                                                   });
}

void OMVello::tryAgain(const std::shared_ptr<Start>& start) {
  try {
    tryStart(start);
  } catch (const std::system_error& failure) {
    log(std::string("OrlixKit: no thread for a session start: ") + failure.what());
    showRetry(start);
  }
}

void OMVello::perform(const std::shared_ptr<Start>& start) {
  log("API version: " + KCVelloConnection::getApiVersion());
  std::shared_ptr<KCVelloConnection> client;
  try {
    client = newConnection(*start);
  } catch (const std::bad_alloc&) {
    throw;  // the next attempt may have memory
  } catch (...) {
    log("Exception caught");
  }
  if (!adopt(start, client)) {
    return;
  }
  log("establishSession");
  establish(start, client);
}

std::shared_ptr<KCVelloConnection> OMVello::newConnection(const Start& start) {
  const std::shared_ptr<OMVelloEnvironment> upper = environment();
  const std::string url = upper->velloUrl();
  const Device& device = *Host::current().ports().device;
  Platform platform;
  platform.os = "IOS";
  platform.osVersion = device.systemVersion();
  platform.node = callingNode;
  platform.libKey = start.libKey;
  platform.appVersion = ORLIXKIT_VERSION;
  platform.device = upper->deviceModel();
  const std::string timeZone = getTimeZone();
  const std::string appVersion = fmt::format("iPhone {} {}", callingNode, *platform.appVersion);
  return std::make_shared<KCVelloConnection>(
      url, callingNode, serialFor(start),
      std::make_shared<OMStorage>(upper->storageKeyForItem("data")), std::make_shared<OMNetwork>(),
      appVersion, std::move(platform), timeZone);
}

/// Later attempts reuse a random identifier that an attempt had to make.
Serial OMVello::serialFor(const Start& start) const {
  const std::lock_guard held(lock_);
  return start.client ? start.client->serial() : start.serial;
}

/// Installs the client. When none could be made, keeps the former one; without that, the start
/// counts as successful. False when the start has been superseded.
bool OMVello::adopt(const std::shared_ptr<Start>& start,
                    std::shared_ptr<KCVelloConnection>& client) {
  std::shared_ptr<KCVelloConnection> former = client;  // released outside the lock
  const std::lock_guard held(lock_);
  if (start != start_) {
    return false;
  }
  if (client) {
    start->client = client;
    connection_.swap(former);
  } else {
    client = connection_;
  }
  return true;
}

void OMVello::establish(const std::shared_ptr<Start>& start,
                        const std::shared_ptr<KCVelloConnection>& client) {
  try {
    if (client) {
      client->within({.flow = start->flow}).establishSession();
    }
    reportEstablished(start);
  } catch (const SMSException&) {
    log("SMSException caught - Need to start activation flow");
    notify(start, &OMVelloDelegate::velloNotActivated);
  } catch (const RequestEnded&) {
    return;  // the flow that requested the session has ended
  } catch (const NetworkException&) {
    log("NetworkException caught");
    offerRetry(start);
  } catch (const AppOutOfDateException& outOfDate) {
    showNotice(start, outOfDate.message, outOfDate.stopConnection);
  } catch (const TcOutOfDateException&) {
    report(start, [upper = environment()] { upper->showTemsAndConditionChangeScreen(); });
    // At once, without waiting for the user's consent: the flow continues behind the terms screen.
    reportEstablished(start);
  } catch (...) {
    offerRetry(start);
  }
}

/// Runs on the main queue, only while the start is the current one. Alerts use this too, so that
/// none is shown after a new start.
void OMVello::report(const std::shared_ptr<Start>& start, Task onMain) {
  Host::current().ports().mainQueue->async([this, start, onMain = std::move(onMain)] {
    if (isPresent(start)) {
      onMain();
    }
  });
}

/// Neither superseded nor of an ended flow: an entry call ends the former flow some steps before
/// its own start, and the main queue may run in between.
bool OMVello::isPresent(const std::shared_ptr<Start>& start) const {
  return start == presentStart() && (!start->flow || start->flow->isLive());
}

void OMVello::notify(const std::shared_ptr<Start>& start, void (OMVelloDelegate::*callback)()) {
  report(start, [start, callback] {
    if (start->delegate) {
      (*start->delegate.*callback)();
    }
  });
}

void OMVello::reportEstablished(const std::shared_ptr<Start>& start) {
  notify(start, &OMVelloDelegate::velloSessionEstablished);
}

void OMVello::showNotice(const std::shared_ptr<Start>& start,
                         const std::optional<std::string>& message, bool stopConnection) {
  report(start, [this, start, upper = environment(), message, stopConnection] {
    if (stopConnection) {
      // The start ends here without calling the delegate: a refused library has no next step.
      upper->showAlertWithTitle("Error", message);
      return;
    }
    upper->showAlertWithTitle("Warning", message);
    reportEstablished(start);  // queued from here, so that the alert comes before it
  });
}

void OMVello::offerRetry(const std::shared_ptr<Start>& start) {
  report(start, [this, start] { showRetry(start); });
}

void OMVello::showRetry(const std::shared_ptr<Start>& start) {
  const auto whilePresent = [this, start](Task task) {
    return [this, start, task = std::move(task)] {
      if (isPresent(start)) {
        task();
      }
    };
  };
  environment()->showNetworkErrorRetry(whilePresent([this, start] { tryAgain(start); }),
                                       whilePresent([this] { cancel(); }));
}

std::string OMVello::getTimeZone() {
  const Ports& ports = Host::current().ports();
  const auto offset =
      std::chrono::duration_cast<std::chrono::minutes>(ports.device->utcOffset(ports.clock->now()))
          .count();
  const auto minutes = offset < 0 ? -offset : offset;
  std::string timeZone =
      fmt::format("{}{:02}:{:02}", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
  log("TimeZone:" + timeZone);
  return timeZone;
}

void OMVello::cancel() {
  log("Canceling the process");
  environment()->returnUserDidCancel();
}

void OMVello::velloSessionEstablished() { reportEstablished(presentStart()); }

std::int64_t OMVello::system() const { return presentStart()->system; }

std::shared_ptr<KCVelloConnection> OMVello::connection() const {
  const std::lock_guard held(lock_);
  return connection_;
}

void OMVello::resetCredentials(StorageInterface& storage) {
  std::shared_ptr<KCVelloConnection> client = connection();
  const std::shared_ptr<Start> start = presentStart();
  if (!client && start->libKey) {
    client = withNetworkException("reset", [&] { return newConnection(*start); });
  }
  if (client) {
    client->reset(storage);
  }
}

std::shared_ptr<OMVello::Start> OMVello::presentStart() const {
  const std::lock_guard held(lock_);
  return start_;
}

std::shared_ptr<OMVelloEnvironment> OMVello::environment() const {
  const std::lock_guard held(lock_);
  if (!environment_) {
    throw std::logic_error("OMVello: setEnvironment has to come before the first start");
  }
  return environment_;
}

}  // namespace orlix
