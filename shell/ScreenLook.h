// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QQmlEngine>

#include "shell/LookOptions.h"

namespace orlix::shell {

/// Appearance of all screens of an engine, `orlixLook` in QML. Follows the application's palette
/// and layout direction, and the screen's text size. Colours set by the screen model (sheet
/// background, buttons, alerts) are the same in both schemes. Main thread.
class ScreenLook : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool dark READ dark NOTIFY changed)
  Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed)
  Q_PROPERTY(double textScale READ textScale NOTIFY changed)
  Q_PROPERTY(bool mirrored READ mirrored NOTIFY changed)

 public:
  /// Returns the engine's look, created on the first call and owned by the engine.
  static ScreenLook& of(QQmlEngine& engine);

  void setOptions(const LookOptions& options);
  bool dark() const;
  bool reducedMotion() const { return options_.reducedMotion; }
  /// `LookOptions::textScale`, multiplied by the screen's text size where Qt does not scale the
  /// whole window.
  double textScale() const;
  /// True for a right-to-left layout.
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
