#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// Threads that each run one task after another. A task never waits for another one's end: when no
/// thread is free a new one is made, and of several free ones the last that worked is taken, whose
/// memory is still at hand. Any thread; `close` from none of its own.
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
