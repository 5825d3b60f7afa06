// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAnimationDriver>
#include <chrono>

#include "tests/shell/DrawnPhone.h"

namespace orlix::shell {

/// The time that animations and drawn timers go by, moved on by the test. Make it before the phone.
class HandDriver : public QAnimationDriver {
 public:
  HandDriver() { install(); }
  ~HandDriver() override { uninstall(); }
  qint64 elapsed() const override { return elapsed_; }
  void pass(DrawnPhone& phone, std::chrono::milliseconds time) {
    phone.settle();  // what has begun meanwhile gets its start
    elapsed_ += time.count();
    advanceAnimation();
    phone.settle();
  }

 protected:
  /// Animations begin again after none was running: the time in between is not theirs.
  void start() override {
    elapsed_ = 0;
    QAnimationDriver::start();
  }

 private:
  qint64 elapsed_ = 0;
};

}  // namespace orlix::shell
