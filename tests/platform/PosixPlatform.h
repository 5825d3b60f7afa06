#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <stdlib.h>
#include <stop_token>
#include <string>
#include <vector>

#include "orlixkit/platform/posix/CurlConnections.h"
#include "orlixkit/platform/posix/PosixBackgroundQueues.h"
#include "orlixkit/platform/posix/PosixClock.h"
#include "orlixkit/platform/posix/PosixRunLoop.h"

namespace orlix {

class CapturedLog : public SystemLog {
 public:
  void write(std::string_view line) override {
    const std::lock_guard guard(lock_);
    lines_.emplace_back(line);
  }
  std::vector<std::string> lines() const {
    const std::lock_guard guard(lock_);
    return lines_;
  }

 private:
  mutable std::mutex lock_;
  std::vector<std::string> lines_;
};

/// Connections, queues and clock of one host.
class PosixPlatform {
 public:
  MainQueue& mainQueue() { return mainQueue_; }
  BackgroundQueues& backgroundQueues() { return backgroundQueues_; }
  Clock& clock() { return clock_; }
  UrlConnections& urlConnections() { return connections_; }
  std::vector<std::string> logged() const { return log_->lines(); }

 private:
  std::shared_ptr<CapturedLog> log_ = std::make_shared<CapturedLog>();
  std::stop_source shutdown_;
  CurlConnections connections_;
  PosixClock clock_{shutdown_.get_token(), connections_.waitingWork()};
  PosixRunLoop mainQueue_{log_};
  PosixBackgroundQueues backgroundQueues_{shutdown_};
};

/// A folder of the test's own, removed with all that stands in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orlix-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace orlix
