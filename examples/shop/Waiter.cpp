// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/Waiter.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>

namespace orlix::shop {

namespace {

constexpr std::chrono::seconds kBeat{1};

/// Wakes the main queue once a second and at the deadline, so that a wait notices the time even
/// when nothing else happens.
class Heartbeat {
 public:
  Heartbeat(const Ports& ports, SteadyTime deadline)
      : state_(std::make_shared<State>(ports.clock->newCondition())) {
    ports.backgroundQueues->global(
        QualityOfService::background,
        [state = state_, clock = ports.clock, queue = ports.mainQueue, deadline] {
          state->condition->lock();
          while (!state->stopped) {
            const SteadyTime next = std::min(clock->steadyNow() + kBeat, deadline);
            state->condition->waitUntil(next);
            queue->async([] {});
            const SteadyTime now = clock->steadyNow();
            // Woken early without being stopped: the host is shutting down.
            if (now >= deadline || now < next) {
              break;
            }
          }
          state->condition->unlock();
        });
  }
  ~Heartbeat() {
    state_->condition->lock();
    state_->stopped = true;
    state_->condition->unlock();
    state_->condition->signal();
  }
  Heartbeat(const Heartbeat&) = delete;
  Heartbeat& operator=(const Heartbeat&) = delete;

 private:
  struct State {
    explicit State(std::unique_ptr<Condition> made) : condition(std::move(made)) {}
    std::unique_ptr<Condition> condition;
    bool stopped = false;
  };
  std::shared_ptr<State> state_;
};

}  // namespace

bool Waiter::waitFor(Duration limit, const std::function<bool()>& done, const Progress& progress) {
  if (done()) {
    return true;
  }
  const SteadyTime start = ports_.clock->steadyNow();
  const SteadyTime deadline = start + limit;
  const Heartbeat heartbeat(ports_, deadline);
  bool held = false;
  std::chrono::seconds reported{0};
  ports_.mainQueue->runUntil([&] {
    held = done();
    const SteadyTime now = ports_.clock->steadyNow();
    const auto elapsed = std::chrono::floor<std::chrono::seconds>(now - start);
    if (!held && progress && elapsed > reported) {
      reported = elapsed;
      progress(elapsed);
    }
    return held || now >= deadline;
  });
  return held;
}

void Waiter::drain() {
  const auto drained = std::make_shared<bool>(false);
  ports_.mainQueue->async([drained] { *drained = true; });
  ports_.mainQueue->runUntil([&drained] { return *drained; });
}

void Waiter::runBlocking(const std::function<void()>& work) {
  struct State {
    std::atomic<bool> done{false};
    std::exception_ptr error;
  };
  const auto state = std::make_shared<State>();
  ports_.backgroundQueues->global(QualityOfService::userInitiated,
                                  [state, work, queue = ports_.mainQueue] {
                                    try {
                                      work();
                                    } catch (...) {
                                      state->error = std::current_exception();
                                    }
                                    state->done = true;
                                    queue->async([] {});
                                  });
  ports_.mainQueue->runUntil([&state] { return state->done.load(); });
  if (state->error) {
    std::rethrow_exception(state->error);
  }
}

}  // namespace orlix::shop
