#pragma once

#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QVariantAnimation>
#include <memory>

#include "orlixkit/platform/ui/AlertController.h"
#include "shell/AlertAdapter.h"
#include "shell/ScreenAdapter.h"

namespace orlix::shell {

/// One presented controller in the scene: its layer over all that stands below, and on the layer
/// the drawn screen or alert. Released, it goes from the scene; the items end when the event that
/// they may be in has ended. Main thread.
class DrawnScreen {
 public:
  /// `layers` is what the layer is put on, and fills.
  DrawnScreen(QQmlEngine& engine, QQuickItem& layers, std::shared_ptr<ViewController> controller);
  ~DrawnScreen();
  DrawnScreen(const DrawnScreen&) = delete;
  DrawnScreen& operator=(const DrawnScreen&) = delete;

  const std::shared_ptr<ViewController>& controller() const { return controller_; }
  bool isAlert() const { return alert_ != nullptr; }
  /// The root of the storyboard file; none when there is no such file.
  QQuickItem* content() const { return content_; }
  QQuickItem* layer() const { return layer_; }
  /// None for an alert.
  ScreenAdapter* screen() const { return screen_.get(); }

  /// Puts the drawn screen where its controller's view stands, in a window of this size.
  void place(QSizeF window);
  /// From 0, not to be seen, to 1. `dimming`: what dims the screens below fades as well.
  void fade(double amount, bool dimming);
  double faded() const { return amount_; }
  /// The layer without the screen, still dimming what stands below it, to be kept a moment; none
  /// for what dims nothing.
  std::unique_ptr<QQuickItem> takeDimming();

 private:
  void drawScreen(QQmlEngine& engine);

  const std::shared_ptr<ViewController> controller_;
  QPointer<QQuickItem> layer_;
  QPointer<QQuickItem> content_;
  std::unique_ptr<ScreenAdapter> screen_;
  std::unique_ptr<AlertAdapter> alert_;
  double amount_ = 1;
};

}  // namespace orlix::shell
