// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAnimationDriver>
#include <chrono>

#include "tests/shell/DrawnPhone.h"

namespace orlix::shell {

/// An animation driver whose time the test advances. Create it before the phone.
class HandDriver : public QAnimationDriver {
 public:
  HandDriver() { install(); }
  ~HandDriver() override { uninstall(); }
  qint64 elapsed() const override { return elapsed_; }
  void pass(DrawnPhone& phone, std::chrono::milliseconds time) {
    phone.settle();  // new animations record their start time
    elapsed_ += time.count();
    advanceAnimation();
    phone.settle();
  }

 protected:
  /// Called when an animation starts after none was running; the time in between does not count.
  void start() override {
    elapsed_ = 0;
    QAnimationDriver::start();
  }

 private:
  qint64 elapsed_ = 0;
};

}  // namespace orlix::shell
