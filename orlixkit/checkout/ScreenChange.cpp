#include "orlixkit/checkout/ScreenChange.h"

namespace orlix {

void cutPresented(const std::shared_ptr<ViewController>& controller, const Task& then) {
  controller->dismiss(false, [controller, then] {
    if (controller->presentedViewController()) {
      cutPresented(controller, then);
    } else {
      then();
    }
  });
}

}  // namespace orlix
