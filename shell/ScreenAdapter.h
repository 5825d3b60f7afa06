#pragma once

#include <QQmlPropertyMap>
#include <QString>
#include <map>
#include <memory>
#include <string>

#include "orlixkit/platform/ui/ViewController.h"
#include "shell/OutletAdapter.h"

namespace orlix::shell {

/// A screen as the drawing language sees it: each outlet by its name (`screen.merchantView`),
/// `view` for the screen's own view, and the actions. Once detached it does nothing. Main thread.
class ScreenAdapter : public QQmlPropertyMap {
  Q_OBJECT
  Q_PROPERTY(QString identifier READ identifier CONSTANT)

 public:
  /// `controller` has loaded its view.
  explicit ScreenAdapter(const std::shared_ptr<ViewController>& controller);
  ~ScreenAdapter() override;
  void detach();

  QString identifier() const { return identifier_; }
  Q_INVOKABLE bool hasAction(const QString& name) const;
  /// Runs the action when it can be touched now; one that the screen lacks is logged.
  Q_INVOKABLE void perform(const QString& name);

  /// The mask of the progress indicator has come or gone.
  void refreshReachable();

 protected:
  /// What the drawing language writes is not taken.
  QVariant updateValue(const QString& key, const QVariant& input) override;

 private:
  void add(const std::string& name, const std::shared_ptr<View>& view);
  void refreshShown();

  QString identifier_;
  std::weak_ptr<ViewController> controller_;
  std::map<std::string, std::unique_ptr<OutletAdapter>> outlets_;
};

}  // namespace orlix::shell
