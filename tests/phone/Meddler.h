#pragma once

#include <functional>
#include <utility>

#include "orlixkit/ui/Application.h"

namespace orlix::test {

/// The host's code: does something when the progress indicator changes for the nth time.
struct Meddler : UiObserver {
  Meddler(int n, Task task) : left(n), doing(std::move(task)) {}
  void progressChanged(const ProgressIndicator&) override {
    if (counts() && --left == 0) {
      doing();
    }
  }
  int left;
  Task doing;
  /// The changes to count.
  std::function<bool()> counts = [] { return true; };
};

}  // namespace orlix::test
