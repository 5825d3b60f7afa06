// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cerrno>
#include <semaphore.h>

namespace orlix {

/// A counting semaphore. Unlike a condition variable it does not reacquire a lock after waiting,
/// and unlike std::counting_semaphore it does not spin before waiting. Any thread.
class Semaphore {
 public:
  Semaphore() { sem_init(&count_, 0, 0); }
  ~Semaphore() { sem_destroy(&count_); }
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  void post() { sem_post(&count_); }
  /// Decrements the count, waiting while it is zero.
  void wait() {
    while (sem_wait(&count_) != 0 && errno == EINTR) {
    }
  }

 private:
  sem_t count_;
};

}  // namespace orlix
