// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/ConnectionAlerts.h"

#include <algorithm>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/RunningTasks.h"

namespace orlix {

namespace {

bool isWanted(const ConnectionAlert& alert) { return !alert.isWanted || alert.isWanted(); }

}  // namespace

void ConnectionAlerts::add(ConnectionAlert alert) {
  const auto isAlike = [&alert](const std::shared_ptr<ConnectionAlert>& other) {
    return other && !alert.source.empty() && other->source == alert.source && isWanted(*other);
  };
  if (isAlike(shown_) || std::any_of(waiting_.begin(), waiting_.end(), isAlike)) {
    OXUtil::indicator().dismiss();  // left to the alert by the request that has failed again
    return;
  }
  alert.cancel = [cancel = std::move(alert.cancel)] {
    OXUtil::indicator().dismiss();
    if (cancel) {
      cancel();
    }
  };
  waiting_.push_back(std::make_shared<ConnectionAlert>(std::move(alert)));
  showNext();
}

void ConnectionAlerts::dropUnwanted() {
  std::erase_if(waiting_, [](const auto& alert) { return !isWanted(*alert); });
  if (shown_ && !isWanted(*shown_)) {
    withdrawShown();
    showNext();
  }
}

void ConnectionAlerts::close() {
  waiting_.clear();
  withdrawShown();
}

void ConnectionAlerts::withdrawShown() {
  shown_.reset();
  if (const auto controller = std::exchange(controller_, {}).lock()) {
    controller->withdraw();
  }
}

void ConnectionAlerts::showNext() {
  while (!shown_ && !waiting_.empty()) {
    const std::shared_ptr<ConnectionAlert> next = waiting_.front();
    waiting_.pop_front();
    if (isWanted(*next)) {
      shown_ = next;
      OXUtil::indicator().dismiss([self = shared_from_this(), next] { self->present(next); });
    }
  }
}

void ConnectionAlerts::present(const std::shared_ptr<ConnectionAlert>& alert) {
  if (shown_ != alert) {
    return;  // closed while the indicator went
  }
  if (!isWanted(*alert)) {
    shown_.reset();
    showNext();
    return;
  }
  const std::shared_ptr<AlertController> controller = controllerFor(alert);
  controller_ = controller;
  OXUtil::showAlert(controller);
}

std::shared_ptr<AlertController> ConnectionAlerts::controllerFor(
    const std::shared_ptr<ConnectionAlert>& alert) {
  auto controller = std::make_shared<AlertController>(
      "Connection problem", "Please check your network connection and try again.");
  controller->addAction(
      {"Cancel", AlertActionStyle::cancel, whenOver(alert, &ConnectionAlert::cancel)});
  controller->addAction(
      {"Retry", AlertActionStyle::standard, whenOver(alert, &ConnectionAlert::retry)});
  controller->onLost =
      whenOver(alert, alert->lost ? &ConnectionAlert::lost : &ConnectionAlert::cancel);
  return controller;
}

// Weak: the alert is held by a screen, and must not keep the flow's alerts alive in turn.
Task ConnectionAlerts::whenOver(const std::shared_ptr<ConnectionAlert>& alert,
                                Task ConnectionAlert::*task) {
  return [weak = weak_from_this(), alert, task] {
    const std::shared_ptr<ConnectionAlerts> self = weak.lock();
    if (!self) {
      return;
    }
    self->shown_.reset();
    if (isWanted(*alert)) {
      runLogged((*alert).*task);
    }
    self->showNext();
  };
}

}  // namespace orlix
