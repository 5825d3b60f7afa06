// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlPropertyMap>
#include <QString>
#include <map>
#include <memory>
#include <string>

#include "orlixkit/ui/ViewController.h"
#include "shell/OutletAdapter.h"

namespace orlix::shell {

/// Exposes a screen to QML: each outlet by its name (`screen.merchantView`), `view` for the
/// screen's own view, and the actions. Inactive once detached. Main thread.
class ScreenAdapter : public QQmlPropertyMap {
  Q_OBJECT
  Q_PROPERTY(QString identifier READ identifier CONSTANT)

 public:
  /// `controller` must have loaded its view.
  explicit ScreenAdapter(const std::shared_ptr<ViewController>& controller);
  ~ScreenAdapter() override;
  void detach();

  QString identifier() const { return identifier_; }
  Q_INVOKABLE bool hasAction(const QString& name) const;
  /// Runs the action if a touch has an effect now; logs an action that the screen lacks.
  Q_INVOKABLE void perform(const QString& name);

  /// The mask of the progress indicator has appeared or disappeared.
  void refreshReachable();

 protected:
  /// Rejects values written by QML.
  QVariant updateValue(const QString& key, const QVariant& input) override;

 private:
  void add(const std::string& name, const std::shared_ptr<View>& view);
  void refreshShown();

  QString identifier_;
  std::weak_ptr<ViewController> controller_;
  std::map<std::string, std::unique_ptr<OutletAdapter>> outlets_;
};

}  // namespace orlix::shell
