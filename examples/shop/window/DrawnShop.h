// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <ostream>

#include "examples/shop/Shop.h"
#include "examples/shop/window/MessageLines.h"
#include "examples/shop/window/ShopCounter.h"
#include "shell/ScreenPresenter.h"

namespace orlix::shop {

/// The shop in a window, and the wallet drawn over it. Made on the application's thread, after the
/// application object. Main thread.
class DrawnShop {
 public:
  /// Throws UsageError when the options name something that cannot be used.
  DrawnShop(const ShopOptions& options, std::ostream& out, std::ostream& progress);
  ~DrawnShop();
  DrawnShop(const DrawnShop&) = delete;
  DrawnShop& operator=(const DrawnShop&) = delete;

  /// Runs the script to its end. Throws ScriptError with the line number and the reason, also for a
  /// warning of the toolkit: what is drawn is to draw without a word.
  void run(ScriptSource& script);

  QQuickWindow& window() { return window_; }
  shell::ScreenPresenter& presenter() { return *presenter_; }

  /// Sets defaults for Qt in the environment: without a display it draws offscreen. Call it before
  /// the application object is made.
  static void prepareEnvironment();

 private:
  void drawCounter();

  ShopOptions options_;
  QQmlEngine engine_;
  QQuickWindow window_;
  Ports ports_;
  Shop shop_;
  std::unique_ptr<ShopCounter> counter_;
  std::unique_ptr<QQuickItem> drawn_;
  std::unique_ptr<MessageLines> messages_;
  std::unique_ptr<shell::ScreenPresenter> presenter_;
};

/// Runs the shop in a window: by the script when the options name one, else until its user closes
/// it. Throws UsageError or ScriptError. Once in a process.
void runDrawn(const ShopOptions& options, std::ostream& out, std::ostream& err);

}  // namespace orlix::shop
