// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QString>

#include "orlixkit/ui/ProgressIndicator.h"

namespace orlix::shell {

/// Exposes the progress indicator to QML.
class ProgressAdapter : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool shown READ shown NOTIFY changed)
  Q_PROPERTY(QString status READ status NOTIFY changed)
  Q_PROPERTY(bool masked READ masked NOTIFY changed)

 public:
  bool shown() const { return shown_; }
  QString status() const { return status_; }
  /// Whether the screen is dimmed by a gradient and touches are masked.
  bool masked() const { return masked_; }

  void show(const ProgressIndicator& indicator) {
    shown_ = true;
    status_ = QString::fromStdString(indicator.status());
    masked_ = indicator.blocksInput();
    Q_EMIT changed();
  }
  void hide() {
    shown_ = false;
    Q_EMIT changed();
  }

 Q_SIGNALS:
  void changed();

 private:
  bool shown_ = false;
  QString status_;
  bool masked_ = false;
};

}  // namespace orlix::shell
