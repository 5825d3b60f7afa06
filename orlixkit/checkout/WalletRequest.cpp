#include "orlixkit/checkout/WalletRequest.h"

namespace orlix {

void runThereAndBack(RequestQueue queue, Task work, const Task& back) {
  Task task = [work = std::move(work), back] {
    runLoggedInBackground(work);
    handOver(back);
  };
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

}  // namespace orlix
