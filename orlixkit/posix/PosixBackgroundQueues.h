// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <stop_token>

#include "orlixkit/ports/BackgroundQueues.h"

namespace orlix {

class WorkerPool;

/// Background work on threads named "orlix-worker": as many as there are tasks at once, of which a
/// few stay for the next ones. `close` requests the stop of `shutdown`, which wakes everything that
/// waits on the clock made with its token.
class PosixBackgroundQueues : public BackgroundQueues {
 public:
  explicit PosixBackgroundQueues(std::stop_source shutdown);
  ~PosixBackgroundQueues() override;

  /// The quality of service changes nothing: Linux lets a process lower a thread's priority but not
  /// raise it again, and the payment's own requests run in the background as well.
  void global(QualityOfService service, Task task) override;
  std::shared_ptr<OperationQueue> newOperationQueue() override;
  void close() override;

 private:
  const std::shared_ptr<WorkerPool> pool_;
};

}  // namespace orlix
