// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/WalletRequest.h"

#include <stdexcept>
#include <system_error>

#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"

namespace orlix {

namespace {

void addTo(RequestQueue queue, Task task) {
  BackgroundQueues& queues = *Host::current().ports().backgroundQueues;
  switch (queue) {
    case RequestQueue::newOperationQueue:
      queues.newOperationQueue()->add(std::move(task));
      break;
    case RequestQueue::globalBackground:
      queues.global(QualityOfService::background, std::move(task));
      break;
    case RequestQueue::globalHigh:
      queues.global(QualityOfService::high, std::move(task));
      break;
  }
}

}  // namespace

void runInBackground(RequestQueue queue, Task work, const Task& then) {
  try {
    addTo(queue, [work = std::move(work), then] {
      runLoggedInBackground(work);
      deliverToMainQueue(then);
    });
  } catch (const std::system_error& failure) {
    log(std::string("OrlixKit: no thread for a request: ") + failure.what());
    Host::current().ports().mainQueue->async(then);
  }
}

void logFailureOfRequest(const std::exception& failure) {
  if (dynamic_cast<const NetworkException*>(&failure) == nullptr) {
    logFailure("a request", failure.what());
  }
}

}  // namespace orlix
