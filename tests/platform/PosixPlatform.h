#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "orlixkit/platform/memory/MemoryLog.h"
#include "orlixkit/platform/posix/CurlConnections.h"
#include "orlixkit/platform/posix/PosixBackgroundQueues.h"
#include "orlixkit/platform/posix/PosixClock.h"
#include "orlixkit/platform/posix/PosixRunLoop.h"
#include "tests/TemporaryFolder.h"

namespace orlix {

using test::TemporaryFolder;

/// Connections, queues and clock of one host.
class PosixPlatform {
 public:
  MainQueue& mainQueue() { return mainQueue_; }
  BackgroundQueues& backgroundQueues() { return backgroundQueues_; }
  Clock& clock() { return clock_; }
  UrlConnections& urlConnections() { return connections_; }
  std::vector<std::string> logged() const { return log_->lines(); }

 private:
  std::shared_ptr<MemoryLog> log_ = std::make_shared<MemoryLog>();
  std::stop_source shutdown_;
  CurlConnections connections_;
  PosixClock clock_{shutdown_.get_token(), connections_.waitingWork()};
  PosixRunLoop mainQueue_{log_};
  PosixBackgroundQueues backgroundQueues_{shutdown_};
};

}  // namespace orlix
