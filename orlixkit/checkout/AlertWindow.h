// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/Application.h"

namespace orlix {

/// Shows alerts over whatever is on top, finding the application's active window by itself.
class AlertWindow {
 public:
  /// Thread: any. The alert waits while the top controller is being dismissed; an alert that was
  /// withdrawn by then is not shown. Without a window the alert is logged and treated as lost.
  static void show(const std::shared_ptr<AlertController>& alert, bool animated = true);

  /// Main thread. Null when there is no window.
  static std::shared_ptr<Window> ox_activeApplicationWindow();
  static std::shared_ptr<ViewController> ox_topViewControllerFrom(
      const std::shared_ptr<ViewController>& controller);
};

}  // namespace orlix
