// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/SessionScreen.h"

#include <algorithm>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

SessionScreen::SessionScreen() : session_(OXSession::currentSession()) {}

bool SessionScreen::wasLeft() const { return !presentingViewController() || isBeingDismissed(); }

std::shared_ptr<OXSession> SessionScreen::session() const {
  const std::shared_ptr<OXSession> held = session_.lock();
  return held && held->isLive() ? held : nullptr;
}

void SessionScreen::action(const std::string& name, std::function<void(OXSession&)> operation) {
  ViewController::action(name, [this, operation = std::move(operation)] {
    if (isInUse()) {
      operation(*session());
    }
  });
}

void SessionScreen::action(const std::string& name, Task operation) {
  action(name, [operation = std::move(operation)](OXSession&) { operation(); });
}

void SessionScreen::showProgress(const std::string& status, ProgressMask mask,
                                 ProgressStyle style) {
  if (isInUse()) {
    OXUtil::indicator().show(status, mask, style, shared_from_this());
  }
}

bool SessionScreen::hideProgress() {
  OXUtil::indicator().dismissFor(*this);
  return isLive();
}

void SessionScreen::warn(const std::string& message) {
  // Under the next screen the request was made twice, and the other answer has led there.
  const auto above = presentedViewController();
  if (isInUse() && (!above || above->isAlert())) {
    OXUtil::showAlertWithTitle("Warning", message);
  }
}

void SessionScreen::offerRetry(const std::string& kind, Task retry) {
  const auto self = std::static_pointer_cast<SessionScreen>(shared_from_this());
  ConnectionAlert alert;
  alert.retry = std::move(retry);
  alert.isWanted = [self] { return self->isInUse(); };
  alert.source = identifier() + "." + kind;
  OXUtil::showConnectionAlert(std::move(alert));
}

void SessionScreen::failed(const std::string& kind, Task retry) {
  static_cast<void>(hideProgress());
  offerRetry(kind, std::move(retry));
}

bool SessionScreen::mayAsk(const std::string& kind, bool alone) {
  return !alone || underWay_.insert(kind).second;
}

bool SessionScreen::takes(const Asked& asked, const Task& late) {
  underWay_.erase(asked.kind);
  if (wasLeft()) {
    if (late) {
      late();
    }
    return false;
  }
  if (!asked.latestCounts) {
    return true;
  }
  std::uint64_t& taken = taken_[asked.kind];
  const bool isOvertaken = asked.number < taken;
  taken = std::max(taken, asked.number);
  return !isOvertaken;
}

}  // namespace orlix
