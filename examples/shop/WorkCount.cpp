// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/WorkCount.h"

namespace orlix::shop {

/// One piece of work; it ends once, after its run or when its last copy is dropped.
class CountedTask {
 public:
  CountedTask(std::shared_ptr<WorkCount> count, WorkCount::Place place, Task task)
      : count_(std::move(count)), place_(place), task_(std::move(task)) {
    count_->begin(place_);
  }
  ~CountedTask() { end(); }
  CountedTask(const CountedTask&) = delete;
  CountedTask& operator=(const CountedTask&) = delete;

  void run() {
    // Count the end also of a task that throws; its queue handles the exception.
    struct AtEnd {
      CountedTask& task;
      ~AtEnd() { task.end(); }
    } const atEnd{*this};
    task_();
  }

 private:
  void end() {
    if (!ended_.exchange(true)) {
      count_->end(place_);
    }
  }

  std::shared_ptr<WorkCount> count_;
  const WorkCount::Place place_;
  Task task_;
  std::atomic<bool> ended_{false};
};

namespace {

class CountedMainQueue : public MainQueue {
 public:
  CountedMainQueue(std::shared_ptr<MainQueue> real, std::shared_ptr<WorkCount> count)
      : real_(std::move(real)), count_(std::move(count)) {}
  void async(Task task) override {
    real_->async(count_->counted(WorkCount::Place::mainQueue, std::move(task)));
  }
  bool isCurrent() const override { return real_->isCurrent(); }
  void runUntil(const std::function<bool()>& done) override { real_->runUntil(done); }
  void close() override { real_->close(); }

 private:
  std::shared_ptr<MainQueue> real_;
  std::shared_ptr<WorkCount> count_;
};

class CountedOperationQueue : public OperationQueue {
 public:
  CountedOperationQueue(std::shared_ptr<OperationQueue> real, std::shared_ptr<WorkCount> count)
      : real_(std::move(real)), count_(std::move(count)) {}
  void add(Task task) override {
    real_->add(count_->counted(WorkCount::Place::background, std::move(task)));
  }

 private:
  std::shared_ptr<OperationQueue> real_;
  std::shared_ptr<WorkCount> count_;
};

class CountedBackgroundQueues : public BackgroundQueues {
 public:
  CountedBackgroundQueues(std::shared_ptr<BackgroundQueues> real, std::shared_ptr<WorkCount> count)
      : real_(std::move(real)), count_(std::move(count)) {}
  void global(QualityOfService service, Task task) override {
    real_->global(service, count_->counted(WorkCount::Place::background, std::move(task)));
  }
  std::shared_ptr<OperationQueue> newOperationQueue() override {
    return std::make_shared<CountedOperationQueue>(real_->newOperationQueue(), count_);
  }
  void close() override { real_->close(); }

 private:
  std::shared_ptr<BackgroundQueues> real_;
  std::shared_ptr<WorkCount> count_;
};

}  // namespace

Ports WorkCount::count(Ports ports, const std::shared_ptr<WorkCount>& into) {
  into->wake_ = ports.mainQueue;
  ports.mainQueue = std::make_shared<CountedMainQueue>(ports.mainQueue, into);
  ports.backgroundQueues = std::make_shared<CountedBackgroundQueues>(ports.backgroundQueues, into);
  return ports;
}

Task WorkCount::counted(Place place, Task task) {
  return [work = std::make_shared<CountedTask>(shared_from_this(), place, std::move(task))] {
    work->run();
  };
}

void WorkCount::begin(Place place) {
  ++underWay_;
  onMainQueue_ += place == Place::mainQueue ? 1 : 0;
}

void WorkCount::end(Place place) {
  onMainQueue_ -= place == Place::mainQueue ? 1 : 0;
  // Wake a caller that waits for the end of all work: it runs the main queue and checks again.
  if (--underWay_ == 0 && !wake_->isCurrent()) {
    wake_->async([] {});
  }
}

}  // namespace orlix::shop
