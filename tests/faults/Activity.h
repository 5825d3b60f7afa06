// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <utility>

#include "orlixkit/ports/HttpClient.h"
#include "tests/faults/WrappedQueues.h"

namespace orlix::test {

/// Knows whether the library has anything to do, by the tasks in its queues, what of it waits on
/// the clock, and which exchanges are under way: so that a test need not tell by the time that
/// passes. When nothing is left to do, the main queue gets an empty task, so that who runs it
/// looks.
///
/// Thread: any.
class Activity : public std::enable_shared_from_this<Activity> {
 public:
  enum Kind { mainTask, backgroundTask, exchange };

  explicit Activity(std::shared_ptr<MainQueue> mainQueue) : mainQueue_(std::move(mainQueue)) {}

  /// One more of that kind, for as long as this is held.
  std::shared_ptr<void> begin(Kind kind) {
    add(counts_.at(kind), 1);
    return {nullptr,
            [self = shared_from_this(), kind](void*) { self->add(self->counts_.at(kind), -1); }};
  }
  Wrap counting(Kind kind) {
    return [self = shared_from_this(), kind](Task task) -> Task {
      return [held = self->begin(kind), task = std::move(task)] { task(); };
    };
  }
  /// So many more tasks that wait for a signal or for time, or fewer.
  void addWaiting(int tasks) { add(waiting_, tasks); }

  struct State {
    bool atRest = false;  ///< no task has anything to do; what there is of them waits
    int exchanges = 0;    ///< under way
    bool hasTasks = false;
  };
  /// All of one moment.
  State state() const {
    const std::lock_guard held(lock_);
    return {rests(), counts_[exchange], counts_[backgroundTask] > 0};
  }

 private:
  bool rests() const { return counts_[mainTask] + counts_[backgroundTask] == waiting_; }
  void add(int& count, int change) {
    const std::lock_guard held(lock_);
    count += change;
    if (rests()) {
      mainQueue_->async([] {});
    }
  }

  const std::shared_ptr<MainQueue> mainQueue_;
  mutable std::mutex lock_;
  std::array<int, 3> counts_{};  // this and the next guarded by lock_
  int waiting_ = 0;
};

/// Counts each exchange, whose caller waits as long as it lasts.
class CountedHttpClient : public HttpClient {
 public:
  CountedHttpClient(std::shared_ptr<HttpClient> inner, std::shared_ptr<Activity> activity)
      : inner_(std::move(inner)), activity_(std::move(activity)) {}

  HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) override {
    const std::shared_ptr<void> counted = activity_->begin(Activity::exchange);
    activity_->addWaiting(1);
    HttpResult result = inner_->perform(request, delegate);
    activity_->addWaiting(-1);
    return result;
  }
  void close() override { inner_->close(); }

 private:
  const std::shared_ptr<HttpClient> inner_;
  const std::shared_ptr<Activity> activity_;
};

}  // namespace orlix::test
