// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QQmlEngine>

#include "shell/LookOptions.h"

namespace orlix::shell {

/// Look of all screens drawn by an engine; QML reads it as `orlixLook`. It follows the
/// application's palette and direction, and the screen's text size. Colours set by the screen model
/// (a sheet's background, buttons, alerts) are the same in both schemes. Main thread.
class ScreenLook : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool dark READ dark NOTIFY changed)
  Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed)
  Q_PROPERTY(double textScale READ textScale NOTIFY changed)
  Q_PROPERTY(bool mirrored READ mirrored NOTIFY changed)

 public:
  /// The engine's look, made on the first call and owned by the engine.
  static ScreenLook& of(QQmlEngine& engine);

  void setOptions(const LookOptions& options);
  bool dark() const;
  bool reducedMotion() const { return options_.reducedMotion; }
  /// The option, times the screen's text size where Qt does not scale the whole window by it.
  double textScale() const;
  /// The application is laid out from right to left.
  bool mirrored() const;

 Q_SIGNALS:
  void changed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  ScreenLook();

  LookOptions options_;
};

}  // namespace orlix::shell
