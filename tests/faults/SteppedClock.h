// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

#include "orlixkit/ports/Clock.h"
#include "tests/faults/Activity.h"

namespace orlix::test {

/// The real clock, which a test can advance at once: a wait that ends before that point finds
/// his deadline passed. The calendar can be set apart from it, as a user sets it.
///
/// Thread: any. Conditions must be gone before the clock.
class SteppedClock : public Clock {
 private:
  struct Stepped;

 public:
  SteppedClock(std::shared_ptr<Clock> real, std::shared_ptr<Activity> activity)
      : real_(std::move(real)), activity_(std::move(activity)) {}

  /// Runs after each step: has those look at this clock who do not wait on a condition of it.
  std::function<void()> onStep;

  void letPass(Duration span) {
    skipped_ += span.count();
    {
      const std::lock_guard held(lock_);
      for (Stepped* waited : conditions_) {
        waited->lock();
        waited->signal();
        waited->unlock();
      }
    }
    onStep();
  }
  void setCalendar(Duration ahead) { calendarAhead_ = ahead.count(); }

  SteadyTime steadyNow() const override { return real_->steadyNow() + skipped(); }
  CalendarTime now() const override { return real_->now() + skipped() + Duration(calendarAhead_); }
  bool sleep(Duration duration) override {
    const SteadyTime end = steadyNow() + duration;
    const auto condition = newCondition();
    const std::lock_guard held(*condition);
    while (steadyNow() < end) {
      if (!condition->waitUntil(end) && steadyNow() < end) {
        return false;  // the host's shutdown
      }
    }
    return true;
  }
  std::unique_ptr<Condition> newCondition() override { return std::make_unique<Stepped>(*this); }

 private:
  /// A real condition whose deadlines lie nearer by what was skipped. Its waiters count as waiting
  /// up to the signal, not until they have come round to it.
  struct Stepped : Condition {
    explicit Stepped(SteppedClock& of) : clock(of), real(of.real_->newCondition()) {
      const std::lock_guard held(clock.lock_);
      clock.conditions_.insert(this);
    }
    ~Stepped() override {
      const std::lock_guard held(clock.lock_);
      clock.conditions_.erase(this);
    }
    void lock() override { real->lock(); }
    void unlock() override { real->unlock(); }
    bool waitUntil(SteadyTime deadline) override {
      const unsigned before = signals;
      ++waiters;
      clock.activity_->addWaiting(1);
      const bool signalled = real->waitUntil(deadline - clock.skipped());
      if (signals == before) {
        --waiters;
        clock.activity_->addWaiting(-1);
      }
      return signalled;
    }
    void signal() override {
      ++signals;
      clock.activity_->addWaiting(-waiters.exchange(0));
      real->signal();
    }

    SteppedClock& clock;
    std::unique_ptr<Condition> real;
    std::atomic<unsigned> signals = 0;
    std::atomic<int> waiters = 0;
  };

  Duration skipped() const { return Duration(skipped_); }

  std::shared_ptr<Clock> real_;
  std::shared_ptr<Activity> activity_;
  // Read by those who hold a condition's lock, so not under a lock of our own.
  std::atomic<Duration::rep> skipped_ = 0;
  std::atomic<Duration::rep> calendarAhead_ = 0;
  std::mutex lock_;
  std::set<Stepped*> conditions_;
};

}  // namespace orlix::test
