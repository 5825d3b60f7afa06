// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QRectF>
#include <QVariantAnimation>
#include <chrono>
#include <functional>

#include "shell/ProgressAdapter.h"

namespace orlix::shell {

/// Durations of drawn effects; the screen model does not depend on them.
struct DrawingTimes {
  std::chrono::milliseconds fade{220};    ///< of a screen, an alert, the progress indicator
  std::chrono::milliseconds appear{300};  ///< before the progress indicator is drawn
  std::chrono::milliseconds stay{500};    ///< that the progress indicator is drawn at least
};

/// Draws the progress indicator with a delay, so that a short wait shows none, and for a minimum
/// time, so that its text can be read. Uses the time of Qt's animation driver. Main thread.
class DelayedIndicator : public QObject {
  Q_OBJECT

 public:
  /// `layers`: parent of the drawn item. `beforeDrawing`: returns the area that the indicator must
  /// not cover, in the coordinates of `layers`.
  DelayedIndicator(QQmlEngine& engine, QQuickItem& layers, DrawingTimes times,
                   std::function<QRectF()> beforeDrawing);

  /// Call when the model shows the indicator; draws it after the delay.
  void show(const ProgressIndicator& indicator);
  /// Call when the model's fade has begun.
  void fadeOut();
  /// Call when the model has removed the indicator.
  void hide();
  /// Draws the model's state at once.
  void endDelays();
  /// Call when the window's size or the screen below has changed.
  void place(QSizeF window);
  void setFade(std::chrono::milliseconds fade) { times_.fade = fade; }

 private:
  void draw();
  void remove();
  void startFade();
  bool isDrawn() const { return item_ && item_->isVisible(); }

  DrawingTimes times_;
  const std::function<QRectF()> beforeDrawing_;
  ProgressAdapter progress_;
  QPointer<QQuickItem> item_;
  bool wanted_ = false;  ///< shown by the model
  // Not QPauseAnimation: while only those run, Qt leaves the animation driver's time.
  QVariantAnimation appear_;
  QVariantAnimation stay_;
  QVariantAnimation fade_;
};

}  // namespace orlix::shell
