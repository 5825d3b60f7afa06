// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "examples/shop/EventLines.h"
#include "orlixkit/ui/Application.h"

namespace orlix::shop {

/// Reports what appears: screens, alerts, the progress indicator.
class ScreenReporter : public UiObserver {
 public:
  explicit ScreenReporter(EventLines& events) : events_(events) {}
  void didPresent(const std::shared_ptr<ViewController>& controller) override;
  void progressChanged(const ProgressIndicator& indicator) override;

 private:
  EventLines& events_;
};

}  // namespace orlix::shop
