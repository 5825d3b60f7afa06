// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/WalletRequest.h"

#include <string>
#include <system_error>

#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"

namespace orlix {

namespace {

void addTo(RequestQueue queue, Task task) {
  BackgroundQueues& queues = *Host::current().ports().backgroundQueues;
  if (queue == RequestQueue::newOperationQueue) {
    queues.newOperationQueue()->add(std::move(task));
    return;
  }
  const bool isHigh = queue == RequestQueue::globalHigh;
  queues.global(isHigh ? QualityOfService::high : QualityOfService::background, std::move(task));
}

/// The protocol client has logged why a request failed.
void runUnlessRefused(const Task& work) {
  try {
    work();
  } catch (const NetworkException&) {
    return;
  }
}

}  // namespace

void runInBackground(RequestQueue queue, Task work, const Task& then) {
  try {
    addTo(queue, [work = std::move(work), then] {
      runLoggedInBackground([&work] { runUnlessRefused(work); });
      deliverToMainQueue(then);
    });
  } catch (const std::system_error& failure) {
    log(std::string("OrlixKit: no thread for a request: ") + failure.what());
    Host::current().ports().mainQueue->async(then);
  }
}

}  // namespace orlix
