#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// Threads that each run one task after another. A task never waits for another one's end: when no
/// thread is free a new one is made. Any thread; `close` from none of its own.
class WorkerPool {
 public:
  explicit WorkerPool(std::stop_source shutdown) : shutdown_(std::move(shutdown)) {}
  ~WorkerPool() { close(); }

  /// Throws std::system_error when the system gives no further thread.
  void run(Task task);
  bool isClosed() const { return shutdown_.stop_requested(); }
  /// Drops what has not begun, and joins all threads.
  void close();

 private:
  using Threads = std::list<std::thread>;

  void work(Threads::iterator self);
  void startThread();

  std::stop_source shutdown_;
  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<Task> pending_;  // this and the rest guarded by lock_
  std::size_t idle_ = 0;
  bool closed_ = false;
  Threads threads_;
  Threads ended_;  // to be joined
};

}  // namespace orlix
