// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/VirtualQueues.h"

namespace orlix {

namespace {

class VirtualOperationQueue : public OperationQueue {
 public:
  explicit VirtualOperationQueue(std::shared_ptr<VirtualWorld> world) : world_(std::move(world)) {}

  void add(Task task) override {
    world_->inBackground("operation queue", std::move(task), {}, lane_);
    world_->mayBeOvertaken();
  }

 private:
  std::shared_ptr<VirtualWorld> world_;
  std::shared_ptr<Lane> lane_ = std::make_shared<Lane>();
};

std::string nameOf(QualityOfService service) {
  switch (service) {
    case QualityOfService::userInitiated:
      return "user-initiated task";
    case QualityOfService::high:
      return "high task";
    default:
      return "background task";
  }
}

}  // namespace

void VirtualMainQueue::async(Task task) {
  world_->onMainQueue(std::move(task));
  world_->mayBeOvertaken();
}

void VirtualBackgroundQueues::global(QualityOfService service, Task task) {
  world_->inBackground(nameOf(service), std::move(task));
  world_->mayBeOvertaken();
}

std::shared_ptr<OperationQueue> VirtualBackgroundQueues::newOperationQueue() {
  return std::make_shared<VirtualOperationQueue>(world_);
}

}  // namespace orlix
