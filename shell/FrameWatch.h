#pragma once

#include <QObject>
#include <QQuickWindow>
#include <QTimer>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace orlix::shell {

/// Measures what a user would feel: how long after the host's call the first frame with a screen of
/// the library is drawn, and for how long the main thread could not listen to a touch. Made on the
/// main thread, on its event loop; read there as well.
class FrameWatch : public QObject {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit FrameWatch(QQuickWindow& window);

  /// Begins anew, from now. `isThere` says whether what is waited for is part of the frame that is
  /// about to be drawn; it is asked on the main thread.
  void begin(std::function<bool()> isThere);

  /// From `begin` to the end of the first frame that held it; none before that.
  std::optional<std::chrono::nanoseconds> firstFrame() const;
  /// The longest time since `begin` for which the event loop did not come round, to a millisecond
  /// or two.
  std::chrono::nanoseconds longestStall() const { return longestStall_; }

 private:
  void cameRound();

  QTimer beat_;
  Time begun_;
  std::function<bool()> isThere_;
  Time lastBeat_;
  std::chrono::nanoseconds longestStall_{0};
  // The frame may be drawn on a thread of its own.
  mutable std::mutex lock_;
  bool inThisFrame_ = false;
  std::optional<Time> firstFrame_;
};

}  // namespace orlix::shell
