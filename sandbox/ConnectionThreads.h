#pragma once

#include <atomic>
#include <functional>
#include <httplib.h>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

namespace orlix::sandbox {

/// A thread for each connection. A pool of fixed size would be emptied by a few clients that keep
/// their connections open, or that are being kept waiting on purpose.
class ConnectionThreads : public httplib::TaskQueue {
 public:
  void enqueue(std::function<void()> task) override {
    const std::lock_guard lock(mutex_);
    joinFinished();
    auto finished = std::make_shared<std::atomic<bool>>(false);
    workers_.push_back({std::thread([task = std::move(task), finished] {
                          task();
                          *finished = true;
                        }),
                        finished});
  }

  void shutdown() override {
    const std::lock_guard lock(mutex_);
    for (Worker& worker : workers_) worker.thread.join();
    workers_.clear();
  }

 private:
  struct Worker {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> finished;
  };

  void joinFinished() {
    workers_.remove_if([](Worker& worker) {
      if (!*worker.finished) return false;
      worker.thread.join();
      return true;
    });
  }

  std::mutex mutex_;
  std::list<Worker> workers_;
};

}  // namespace orlix::sandbox
