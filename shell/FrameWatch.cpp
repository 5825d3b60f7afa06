// SPDX-License-Identifier: Apache-2.0

#include "shell/FrameWatch.h"

#include <algorithm>

namespace orlix::shell {

namespace {

FrameWatch::Time now() { return std::chrono::steady_clock::now(); }

}  // namespace

FrameWatch::FrameWatch(QQuickWindow& window) : begun_(now()), lastBeat_(begun_) {
  beat_.setTimerType(Qt::PreciseTimer);
  connect(&beat_, &QTimer::timeout, this, [this] { cameRound(); });
  beat_.start(std::chrono::milliseconds(1));
  // On the main thread, before the scene is passed to the renderer.
  connect(&window, &QQuickWindow::afterAnimating, this, [this] {
    const bool there = isThere_ && isThere_();
    const std::lock_guard lock(lock_);
    inThisFrame_ = there;
  });
  connect(
      &window, &QQuickWindow::frameSwapped, this,
      [this] {
        const std::lock_guard lock(lock_);
        if (inThisFrame_ && !firstFrame_) {
          firstFrame_ = now();
        }
      },
      Qt::DirectConnection);
}

void FrameWatch::begin(std::function<bool()> isThere) {
  isThere_ = std::move(isThere);
  begun_ = now();
  lastBeat_ = begun_;
  longestStall_ = {};
  const std::lock_guard lock(lock_);
  inThisFrame_ = false;
  firstFrame_.reset();
}

std::optional<std::chrono::nanoseconds> FrameWatch::firstFrame() const {
  const std::lock_guard lock(lock_);
  return firstFrame_ ? std::optional<std::chrono::nanoseconds>(*firstFrame_ - begun_)
                     : std::nullopt;
}

void FrameWatch::cameRound() {
  const Time present = now();
  longestStall_ = std::max<std::chrono::nanoseconds>(longestStall_, present - lastBeat_);
  lastBeat_ = present;
}

}  // namespace orlix::shell
