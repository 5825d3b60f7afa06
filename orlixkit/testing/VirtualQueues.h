// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/testing/VirtualWorld.h"

namespace orlix {

/// The main thread of a virtual world as the library's main queue.
class VirtualMainQueue : public MainQueue {
 public:
  explicit VirtualMainQueue(std::shared_ptr<VirtualWorld> world) : world_(std::move(world)) {}

  void async(Task task) override;
  bool isCurrent() const override { return world_->isMain(); }
  /// Throws StuckError when nothing can run any more and `done` does not hold.
  void runUntil(const std::function<bool()>& done) override { world_->runMainQueueUntil(done); }
  void close() override { world_->closeMainQueue(); }

 private:
  std::shared_ptr<VirtualWorld> world_;
};

/// Tasks of a virtual world as the library's background queues. `close` shuts the world down.
class VirtualBackgroundQueues : public BackgroundQueues {
 public:
  explicit VirtualBackgroundQueues(std::shared_ptr<VirtualWorld> world)
      : world_(std::move(world)) {}

  void global(QualityOfService service, Task task) override;
  std::shared_ptr<OperationQueue> newOperationQueue() override;
  void close() override { world_->shutDown(); }

 private:
  std::shared_ptr<VirtualWorld> world_;
};

}  // namespace orlix
