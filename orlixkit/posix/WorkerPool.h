// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Threads that each run one task after another. A task never waits for another to end: when no
/// thread is free a new one is created. Of several free threads the most recently used one is
/// taken, whose memory is still in the cache. Any thread, except that its own threads must not call
/// `close`.
class WorkerPool {
 public:
  explicit WorkerPool(std::stop_source shutdown) : shutdown_(std::move(shutdown)) {}
  ~WorkerPool() { close(); }

  /// Throws std::system_error when no thread can be created.
  void run(Task task);
  bool isClosed() const { return shutdown_.stop_requested(); }
  /// Drops what has not begun, and joins all threads.
  void close();

 private:
  struct Worker;
  // Shared with the worker's caller, which wakes it after releasing the lock.
  using WorkerPointer = std::shared_ptr<Worker>;

  void start(Task task);
  void work(const WorkerPointer& self);

  std::stop_source shutdown_;
  std::mutex lock_;  // guards all below
  bool closed_ = false;
  std::list<WorkerPointer> workers_;
  std::list<WorkerPointer> ended_;   // to be joined
  std::vector<WorkerPointer> idle_;  // the one that worked last is the last
};

}  // namespace orlix
