// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orlix::sandbox {

/// Lets a deliberately slow answer be waited for without holding up the end of the server.
///
/// Thread: every operation may be called from any thread.
class Shutdown {
 public:
  /// Waits for `duration`; false when the server is ending, which is noticed at once.
  bool pause(std::chrono::milliseconds duration) {
    std::unique_lock lock(mutex_);
    return !ended_.wait_for(lock, duration, [this] { return begun_; });
  }

  bool begun() const {
    const std::lock_guard lock(mutex_);
    return begun_;
  }

  void begin() {
    {
      const std::lock_guard lock(mutex_);
      begun_ = true;
    }
    ended_.notify_all();
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable ended_;
  bool begun_ = false;
};

}  // namespace orlix::sandbox
