// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <utility>

#include "orlixkit/ui/Application.h"

namespace orlix::test {

/// The host's code: does something when the progress indicator comes, begins to go or has gone for
/// the nth time.
struct Meddler : UiObserver {
  Meddler(int n, Task task) : left(n), doing(std::move(task)) {}
  void progressChanged(const ProgressIndicator&) override { change(); }
  bool animate(const std::shared_ptr<ViewController>&, Transition transition,
               const Task&) override {
    if (transition == Transition::progress) {
      change();
    }
    return false;
  }
  void change() {
    if (counts() && --left == 0) {
      doing();
    }
  }

  int left;
  Task doing;
  /// Whether a change counts.
  std::function<bool()> counts = [] { return true; };
};

}  // namespace orlix::test
