// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/SystemLog.h"

namespace orlix {

/// What the screen model uses of its surroundings. All of them are required.
struct UiServices {
  std::shared_ptr<MainQueue> mainQueue;
  std::shared_ptr<SystemLog> log;
  /// Runs code that is not the screen model's own. Logs what it throws with the place, and throws
  /// nothing itself.
  std::function<void(const char* where, const Task& code)> runCallOut;
};

}  // namespace orlix
