#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <utility>

#include "orlixkit/platform/UrlConnection.h"
#include "tests/faults/WrappedQueues.h"

namespace orlix::test {

/// Knows whether the library has anything to do, by what stands on its queues, what of it waits on
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

/// Counts each exchange from its start until its delegate has heard the end, or is let go of.
class CountedConnections : public UrlConnections {
 public:
  CountedConnections(std::shared_ptr<UrlConnections> inner, std::shared_ptr<Activity> activity)
      : inner_(std::move(inner)), activity_(std::move(activity)) {}

  std::shared_ptr<UrlConnection> newConnection(
      UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate) override {
    return inner_->newConnection(
        std::move(request),
        std::make_shared<Delegate>(std::move(delegate), activity_->begin(Activity::exchange)));
  }
  void close() override { inner_->close(); }

 private:
  struct Delegate : UrlConnectionDelegate {
    Delegate(std::shared_ptr<UrlConnectionDelegate> of, std::shared_ptr<void> counted)
        : inner(std::move(of)), held(std::move(counted)) {}
    bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod method) override {
      return inner->canAuthenticateAgainstProtectionSpace(method);
    }
    void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) override {
      inner->didReceiveAuthenticationChallenge(challenge);
    }
    void didReceiveResponse(std::int64_t status) override { inner->didReceiveResponse(status); }
    void didReceiveData(std::span<const std::uint8_t> data) override {
      inner->didReceiveData(data);
    }
    void didFinishLoading() override { inner->didFinishLoading(); }
    void didFailWithError(const std::string& why) override { inner->didFailWithError(why); }
    const std::shared_ptr<UrlConnectionDelegate> inner;
    const std::shared_ptr<void> held;
  };
  const std::shared_ptr<UrlConnections> inner_;
  const std::shared_ptr<Activity> activity_;
};

}  // namespace orlix::test
