// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QElapsedTimer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>

namespace orlix::shop {

/// Simulated touch and keyboard input on a window: real events, sent to the window as the platform
/// would send them. Main thread.
class Finger {
 public:
  explicit Finger(QQuickWindow& window) : window_(window) { clock_.start(); }

  /// Touches the item in the middle of what can be seen of it. What takes the touch must be the
  /// item or inside it: throws ScriptError, with `name` in it, for an item that is hidden, out of
  /// the window, covered or disabled.
  void touch(QQuickItem& item, const QString& name);
  /// Presses and releases a key on whatever has the keyboard.
  void press(int key, const QString& text = {});

  /// Brings what is drawn up to date, without letting anything else happen.
  void bringUpToDate() { (void)window_.grabWindow(); }

 private:
  QQuickWindow& window_;
  QElapsedTimer clock_;
  qint64 touches_ = 0;
};

}  // namespace orlix::shop
