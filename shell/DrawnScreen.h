// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QVariantAnimation>
#include <memory>

#include "orlixkit/ui/AlertController.h"
#include "shell/AlertAdapter.h"
#include "shell/ScreenAdapter.h"

namespace orlix::shell {

/// One presented controller in the scene: a layer above the earlier ones, with the drawn screen or
/// alert on it. The destructor removes it from the scene; its items are deleted after the current
/// event. Main thread.
class DrawnScreen {
 public:
  /// `layers` is the parent item of the layer, which fills it.
  DrawnScreen(QQmlEngine& engine, QQuickItem& layers, std::shared_ptr<ViewController> controller);
  ~DrawnScreen();
  DrawnScreen(const DrawnScreen&) = delete;
  DrawnScreen& operator=(const DrawnScreen&) = delete;

  const std::shared_ptr<ViewController>& controller() const { return controller_; }
  bool isAlert() const { return alert_ != nullptr; }
  /// The root of the storyboard file; null when there is no such file.
  QQuickItem* content() const { return content_; }
  QQuickItem* layer() const { return layer_; }
  /// Null for an alert.
  ScreenAdapter* screen() const { return screen_.get(); }

  /// Moves the drawn screen to its controller's view frame, in a window of this size.
  void place(QSizeF window);
  /// Opacity from 0 to 1. `dimming`: the layer that dims the screens below fades as well.
  void fade(double amount, bool dimming);
  /// Gives it the keyboard: to the first field that takes keys, later to what had it last.
  void takeFocus();
  double faded() const { return amount_; }
  /// Releases the layer without the screen, so that the caller can keep the dimming for a moment;
  /// null for a presentation that does not dim.
  std::unique_ptr<QQuickItem> takeDimming();

 private:
  void drawScreen(QQmlEngine& engine);

  const std::shared_ptr<ViewController> controller_;
  QPointer<QQuickItem> layer_;
  QPointer<QQuickItem> content_;
  std::unique_ptr<ScreenAdapter> screen_;
  std::unique_ptr<AlertAdapter> alert_;
  double amount_ = 1;
  bool hadFocus_ = false;
};

}  // namespace orlix::shell
