// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

#include "orlixkit/ui/AlertController.h"
#include "shell/OutletAdapter.h"

namespace orlix::shell {

/// Exposes an alert to QML. Main thread.
class AlertAdapter : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(QString message READ message CONSTANT)
  Q_PROPERTY(QStringList buttons READ buttons CONSTANT)
  Q_PROPERTY(QStringList styles READ styles CONSTANT)
  Q_PROPERTY(int cancelIndex READ cancelIndex CONSTANT)
  Q_PROPERTY(QString titleFontName READ titleFontName CONSTANT)
  Q_PROPERTY(double titleFontSize READ titleFontSize CONSTANT)
  Q_PROPERTY(QString messageFontName READ messageFontName CONSTANT)
  Q_PROPERTY(double messageFontSize READ messageFontSize CONSTANT)
  Q_PROPERTY(QColor textColor READ textColor CONSTANT)
  Q_PROPERTY(orlix::shell::OutletAdapter* view READ view CONSTANT)

 public:
  explicit AlertAdapter(const std::shared_ptr<AlertController>& alert);
  void detach();

  QString title() const { return title_; }
  QString message() const { return message_; }
  QStringList buttons() const { return buttons_; }
  /// Style of each button: "standard", "cancel" or "destructive".
  QStringList styles() const { return styles_; }
  /// The button that Escape presses: the one in cancel style, or the only one; -1 for none.
  int cancelIndex() const;
  QString titleFontName() const { return QString::fromStdString(titleFont_.name); }
  double titleFontSize() const { return titleFont_.size; }
  QString messageFontName() const { return QString::fromStdString(messageFont_.name); }
  double messageFontSize() const { return messageFont_.size; }
  QColor textColor() const { return textColor_; }
  OutletAdapter* view() const { return view_.get(); }

  /// Has no effect during the alert's transitions.
  Q_INVOKABLE void press(int index);

 private:
  std::weak_ptr<AlertController> alert_;
  QString title_;
  QString message_;
  QStringList buttons_;
  QStringList styles_;
  Font titleFont_;
  Font messageFont_;
  QColor textColor_;
  std::unique_ptr<OutletAdapter> view_;
};

}  // namespace orlix::shell
