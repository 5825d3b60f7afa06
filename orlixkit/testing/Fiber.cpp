// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/Fiber.h"

#include <cstring>
#include <cxxabi.h>
#include <new>
#include <ucontext.h>
#include <utility>
#include <vector>

#include <sys/mman.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace orlix {

// A named namespace: a member of Fiber's state must not have a type with internal linkage.
namespace fibers {

constexpr std::size_t kStackSize = std::size_t{1} << 20U;
constexpr std::size_t kGuardSize = 4096;

/// Mapped, not allocated, so that tests with failing allocations do not affect it. The lowest page
/// is inaccessible, so that an overflow faults.
class Stack {
 public:
  Stack()
      : memory_(mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (memory_ == MAP_FAILED || mprotect(memory_, kGuardSize, PROT_NONE) != 0) {
      throw std::bad_alloc();
    }
  }
  ~Stack() {
    if (memory_ != nullptr) {
      munmap(memory_, kStackSize);
    }
  }
  Stack(Stack&& other) noexcept : memory_(std::exchange(other.memory_, nullptr)) {}
  Stack& operator=(Stack&& other) noexcept {
    std::swap(memory_, other.memory_);
    return *this;
  }
  void* bottom() const { return memory_; }

 private:
  void* memory_;
};

/// Stacks for reuse: mapping one costs more than running most tasks.
std::vector<Stack>& spareStacks() {
  thread_local std::vector<Stack> spare;
  return spare;
}

Stack takeStack() {
  std::vector<Stack>& spare = spareStacks();
  if (spare.empty()) {
    return {};
  }
  Stack taken = std::move(spare.back());
  spare.pop_back();
  return taken;
}

/// Exceptions being handled belong to a stack, but the runtime keeps them per thread.
struct HandledExceptions {
  void* caught = nullptr;
  unsigned int uncaught = 0;

  void swapWithThread() {
    HandledExceptions mine = *this;
    void* const threads = abi::__cxa_get_globals();
    std::memcpy(this, threads, sizeof mine);
    std::memcpy(threads, &mine, sizeof mine);
  }
};

}  // namespace fibers

struct Fiber::State {
  fibers::Stack stack = fibers::takeStack();
  ucontext_t own{};
  ucontext_t caller{};
  fibers::HandledExceptions exceptions;  ///< of the side that is not running
  Task task;
  /// The entry function of a context takes no pointer.
  static thread_local State* starting;
#if defined(__SANITIZE_ADDRESS__)
  void* ownFakeStack = nullptr;
  void* callerFakeStack = nullptr;
  const void* callerBottom = nullptr;
  std::size_t callerSize = 0;
#endif
#if defined(__SANITIZE_THREAD__)
  void* ownFiber = __tsan_create_fiber(0);
  void* callerFiber = nullptr;
#endif

  ~State() {
#if defined(__SANITIZE_THREAD__)
    __tsan_destroy_fiber(ownFiber);
#endif
    fibers::spareStacks().push_back(std::move(stack));
  }

  void enter() {
    exceptions.swapWithThread();
#if defined(__SANITIZE_THREAD__)
    callerFiber = __tsan_get_current_fiber();
    __tsan_switch_to_fiber(ownFiber, 0);
#endif
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(&callerFakeStack, stack.bottom(), fibers::kStackSize);
#endif
    swapcontext(&caller, &own);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(callerFakeStack, nullptr, nullptr);
#endif
  }

  /// `returns`: this is the last switch of this fiber, which the sanitizer has to know.
  void leave([[maybe_unused]] bool returns) {
    exceptions.swapWithThread();
#if defined(__SANITIZE_THREAD__)
    __tsan_switch_to_fiber(callerFiber, 0);
#endif
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(returns ? nullptr : &ownFakeStack, callerBottom, callerSize);
#endif
    swapcontext(&own, &caller);
    entered();
  }

  void entered() {
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(ownFakeStack, &callerBottom, &callerSize);
#endif
  }

  void run() {
    entered();
    std::exchange(task, {})();
    leave(true);
  }
};

thread_local Fiber::State* Fiber::State::starting = nullptr;

Fiber::Fiber() : state_(std::make_unique<State>()) {}

Fiber::~Fiber() = default;

void Fiber::start(Task task) {
  State& state = *state_;
  state.task = std::move(task);
  state.exceptions = {};
  State::starting = &state;
  getcontext(&state.own);
  state.own.uc_stack.ss_sp = state.stack.bottom();
  state.own.uc_stack.ss_size = fibers::kStackSize;
  state.own.uc_link = nullptr;
  makecontext(
      &state.own, [] { State::starting->run(); }, 0);
  state.enter();
}

void Fiber::resume() { state_->enter(); }

void Fiber::pause() { state_->leave(false); }

}  // namespace orlix
