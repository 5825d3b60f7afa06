// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QQuickWindow>
#include <QTimer>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace orlix::shell {

/// Measures the time from the host's call to the first frame with a screen of the library, and the
/// longest time for which the main thread handled no touch. Main thread.
class FrameWatch : public QObject {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit FrameWatch(QQuickWindow& window);

  /// Restarts the measurement. `isThere`, called on the main thread, returns whether the awaited
  /// screen is part of the frame about to be drawn.
  void begin(std::function<bool()> isThere);

  /// From `begin` to the end of the first frame with the screen; absent before that.
  std::optional<std::chrono::nanoseconds> firstFrame() const;
  /// The longest interval since `begin` without an iteration of the event loop, accurate to one or
  /// two milliseconds.
  std::chrono::nanoseconds longestStall() const { return longestStall_; }

 private:
  void cameRound();

  QTimer beat_;
  Time begun_;
  std::function<bool()> isThere_;
  Time lastBeat_;
  std::chrono::nanoseconds longestStall_{0};
  // The frame may be drawn on a render thread.
  mutable std::mutex lock_;
  bool inThisFrame_ = false;
  std::optional<Time> firstFrame_;
};

}  // namespace orlix::shell
