#pragma once

#include <cerrno>
#include <semaphore.h>

namespace orlix {

/// Counts what one thread has done for another that waits for it. Unlike a condition it is left
/// without a lock to be taken again, and unlike the standard's own it does not spin before it
/// waits. Any thread.
class Semaphore {
 public:
  Semaphore() { sem_init(&count_, 0, 0); }
  ~Semaphore() { sem_destroy(&count_); }
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  void post() { sem_post(&count_); }
  /// Takes one off, waiting until there is one.
  void wait() {
    while (sem_wait(&count_) != 0 && errno == EINTR) {
    }
  }

 private:
  sem_t count_;
};

}  // namespace orlix
