// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXVelloEnvironment.h"

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"

namespace orlix {

std::string OXVelloEnvironment::velloUrl() { return OXUtil::velloUrl(); }

std::string OXVelloEnvironment::storageKeyForItem(const std::string& item) {
  return OXUtil::storageKeyForItem(item);
}

std::string OXVelloEnvironment::deviceModel() { return OXUtil::deviceModel(); }

std::shared_ptr<const Flow> OXVelloEnvironment::currentFlow() {
  return OXSession::currentSession()->flow();
}

void OXVelloEnvironment::showAlertWithTitle(const std::string& title,
                                            const std::optional<std::string>& message) {
  OXUtil::showAlertWithTitle(title, message.value_or(""));
}

void OXVelloEnvironment::showNetworkErrorRetry(Task retry, Task cancel) {
  OXUtil::showNetworkErrorRetryObject(std::move(retry), std::move(cancel));
}

void OXVelloEnvironment::showTemsAndConditionChangeScreen() {
  OXSession::currentSession()->showTemsAndConditionChangeScreen();
}

void OXVelloEnvironment::returnUserDidCancel() {
  OXSession::currentSession()->returnUserDidCancel();
}

}  // namespace orlix
