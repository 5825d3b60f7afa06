// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/ScreenChange.h"

namespace orlix {

void cutPresented(const std::shared_ptr<OXSession>& session,
                  const std::shared_ptr<ViewController>& controller, const Task& then) {
  controller->dismiss(false, [session, controller, then] {
    if (!session->isLive()) {
      return;
    }
    if (controller->presentedViewController()) {
      cutPresented(session, controller, then);
    } else {
      then();
    }
  });
}

}  // namespace orlix
