#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <curl/curl.h>

#include "orlixkit/platform/posix/CurlSockets.h"

namespace orlix {

class CurlExchange;

/// The I/O thread: drives all exchanges on one multi handle, which keeps their connections.
class CurlLoop {
 public:
  /// Throws std::runtime_error when libcurl cannot be prepared.
  CurlLoop();
  ~CurlLoop();

  /// Starts the exchange. Any thread. After `close` it fails at once.
  void admit(const std::shared_ptr<CurlExchange>& exchange);
  /// Has the thread look at its exchanges again: one was cancelled, or its trust decided. Any
  /// thread.
  void wake();
  /// The loop's thread: waits for what another thread's `wake` announces; ends at the deadline and
  /// at `close` as well.
  void wait(std::chrono::steady_clock::time_point deadline, const std::function<bool()>& done);
  /// Abandons every exchange and ends the thread. Any thread but the loop's own.
  void close();
  /// The loop's thread.
  CurlSockets& sockets() { return sockets_; }

 private:
  struct CleanUpMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };

  void run();
  bool isClosed();
  /// Takes in what was admitted; false when the loop is closed.
  bool takeNew();
  void begin(const std::shared_ptr<CurlExchange>& exchange);
  /// Hands the exchange's handle to libcurl; false when the exchange has failed.
  bool transfer(CurlExchange& exchange);
  void endFinished();
  void endCancelledAndSilent();
  void remove(CurlExchange& exchange);
  /// Until the next time-out, at most a minute.
  int millisecondsToWait() const;

  CurlSockets sockets_;  // before the handle, whose end closes them
  const std::unique_ptr<CURLM, CleanUpMulti> multi_;
  std::mutex lock_;
  std::condition_variable changed_;
  std::vector<std::shared_ptr<CurlExchange>> admitted_;  // guarded by lock_
  bool closed_ = false;                                  // guarded by lock_
  std::thread thread_;                                   // guarded by lock_

  std::vector<std::shared_ptr<CurlExchange>> running_;  // the loop's thread
};

}  // namespace orlix
