#include "orlixkit/checkout/WalletRequest.h"

namespace orlix {

void runOn(RequestQueue queue, Task task) {
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

void runOnMainWhileLive(std::shared_ptr<OXSession> session, Task task) {
  Host::current().ports().mainQueue->async([session = std::move(session), task = std::move(task)] {
    if (session->isLive()) {
      task();
    }
  });
}

}  // namespace orlix
