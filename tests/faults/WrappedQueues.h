// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "orlixkit/ports/BackgroundQueues.h"
#include "orlixkit/ports/MainQueue.h"

namespace orlix::test {

/// What a test makes of each task that the library puts on a queue.
using Wrap = std::function<Task(Task)>;

class WrappedMainQueue : public MainQueue {
 public:
  WrappedMainQueue(std::shared_ptr<MainQueue> inner, Wrap wrap)
      : inner_(std::move(inner)), wrap_(std::move(wrap)) {}
  void async(Task task) override { inner_->async(wrap_(std::move(task))); }
  bool isCurrent() const override { return inner_->isCurrent(); }
  void runUntil(const std::function<bool()>& done) override { inner_->runUntil(done); }
  void close() override { inner_->close(); }

 private:
  const std::shared_ptr<MainQueue> inner_;
  const Wrap wrap_;
};

class WrappedOperationQueue : public OperationQueue {
 public:
  WrappedOperationQueue(std::shared_ptr<OperationQueue> inner, Wrap wrap)
      : inner_(std::move(inner)), wrap_(std::move(wrap)) {}
  void add(Task task) override { inner_->add(wrap_(std::move(task))); }

 private:
  const std::shared_ptr<OperationQueue> inner_;
  const Wrap wrap_;
};

class WrappedBackgroundQueues : public BackgroundQueues {
 public:
  WrappedBackgroundQueues(std::shared_ptr<BackgroundQueues> inner, Wrap wrap)
      : inner_(std::move(inner)), wrap_(std::move(wrap)) {}
  void global(QualityOfService service, Task task) override {
    inner_->global(service, wrap_(std::move(task)));
  }
  std::shared_ptr<OperationQueue> newOperationQueue() override {
    return std::make_shared<WrappedOperationQueue>(inner_->newOperationQueue(), wrap_);
  }
  void close() override { inner_->close(); }

 private:
  const std::shared_ptr<BackgroundQueues> inner_;
  const Wrap wrap_;
};

}  // namespace orlix::test
