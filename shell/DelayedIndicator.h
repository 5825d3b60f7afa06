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

/// Durations of what is drawn; the screen model does not depend on them.
struct DrawingTimes {
  std::chrono::milliseconds fade{220};    ///< of a screen, an alert, the progress indicator
  std::chrono::milliseconds appear{300};  ///< before the progress indicator is drawn
  std::chrono::milliseconds stay{500};    ///< that the progress indicator is drawn at least
};

/// Draws the progress indicator. A short wait draws none, and one that has been drawn stays long
/// enough to be read, over whatever is shown next. Times are those of Qt's animation driver. Main
/// thread.
class DelayedIndicator : public QObject {
  Q_OBJECT

 public:
  /// `layers` is the parent of the drawn item. `beforeDrawing` returns what the indicator must not
  /// cover, in the coordinates of `layers`.
  DelayedIndicator(QQmlEngine& engine, QQuickItem& layers, DrawingTimes times,
                   std::function<QRectF()> beforeDrawing);

  /// The model shows the indicator: draw it, unless it goes before its time has come.
  void show(const ProgressIndicator& indicator);
  /// The model's fade has begun.
  void fadeOut();
  /// It is gone from the model.
  void hide();
  /// Draws what the model shows, without waiting.
  void endDelays();
  /// The window has another size, or the screen below is another one.
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
