// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/SessionScreen.h"

#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

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

bool SessionScreen::take(const std::string& kind, std::uint64_t number) {
  std::uint64_t& taken = taken_[kind];
  if (number < taken) {
    return false;
  }
  taken = number;
  return true;
}

}  // namespace orlix
