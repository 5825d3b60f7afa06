#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "orlixkit/posix/CurlHttpClient.h"
#include "orlixkit/posix/PosixBackgroundQueues.h"
#include "orlixkit/posix/PosixClock.h"
#include "orlixkit/posix/PosixRunLoop.h"
#include "orlixkit/testing/MemoryLog.h"
#include "tests/TemporaryFolder.h"

namespace orlix {

using test::TemporaryFolder;

/// HTTP client, queues and clock of one host.
class PosixPlatform {
 public:
  MainQueue& mainQueue() { return mainQueue_; }
  BackgroundQueues& backgroundQueues() { return backgroundQueues_; }
  Clock& clock() { return *clock_; }
  HttpClient& httpClient() { return httpClient_; }
  std::vector<std::string> logged() const { return log_->lines(); }

 private:
  std::shared_ptr<MemoryLog> log_ = std::make_shared<MemoryLog>();
  std::stop_source shutdown_;
  std::shared_ptr<PosixClock> clock_ = std::make_shared<PosixClock>(shutdown_.get_token());
  CurlHttpClient httpClient_{clock_};
  PosixRunLoop mainQueue_{log_};
  PosixBackgroundQueues backgroundQueues_{shutdown_};
};

}  // namespace orlix
