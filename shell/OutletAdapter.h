// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QUrl>
#include <memory>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix::shell {

/// One outlet of a screen as the drawing language sees it: what it shows, and what a user can do to
/// it. What only one kind of view has is in the adapter of that kind; this one is for plain views.
/// It decides nothing: each value is read from the view when it is asked for. Once its screen has
/// gone it does nothing. Main thread.
class OutletAdapter : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString name READ name CONSTANT)
  Q_PROPERTY(bool shown READ shown NOTIFY shownChanged)
  Q_PROPERTY(double alpha READ alpha NOTIFY changed)
  Q_PROPERTY(QColor backgroundColor READ backgroundColor NOTIFY changed)
  Q_PROPERTY(QColor tintColor READ tintColor NOTIFY changed)
  Q_PROPERTY(double cornerRadius READ cornerRadius NOTIFY changed)
  Q_PROPERTY(double borderWidth READ borderWidth NOTIFY changed)
  Q_PROPERTY(QColor borderColor READ borderColor NOTIFY changed)
  Q_PROPERTY(bool reachable READ reachable NOTIFY reachableChanged)
  Q_PROPERTY(bool tappable READ tappable NOTIFY changed)

 public:
  /// Without a screen the view is looked at, not touched.
  OutletAdapter(std::string name, std::shared_ptr<View> view, std::weak_ptr<ViewController> screen);
  ~OutletAdapter() override;
  /// Releases the view and the screen.
  virtual void detach();
  /// Signals `shown` when it has changed.
  void refreshShown();
  /// The mask has come or gone.
  void refreshReachable() { Q_EMIT reachableChanged(); }

  QString name() const { return QString::fromStdString(name_); }
  bool shown() const { return shown_; }
  double alpha() const;
  QColor backgroundColor() const;
  QColor tintColor() const;
  double cornerRadius() const;
  double borderWidth() const;
  QColor borderColor() const;
  /// False while the progress indicator holds touches back.
  bool reachable() const;
  bool tappable() const;

  /// A touch that ends inside.
  Q_INVOKABLE void tap();

 Q_SIGNALS:
  void changed();
  void shownChanged();
  void reachableChanged();

 protected:
  /// Its view has changed.
  virtual void viewChanged() { Q_EMIT changed(); }
  /// What takes the place of a view that has been released.
  virtual std::shared_ptr<View> emptyView() const { return std::make_shared<View>(); }
  const std::shared_ptr<View>& view() const { return view_; }
  std::shared_ptr<ViewController> screen() const { return screen_.lock(); }
  /// Runs a user's doing unless a touch has no effect now.
  void touch(const Task& doing);

 private:
  const std::string name_;
  std::shared_ptr<View> view_;
  std::weak_ptr<ViewController> screen_;
  bool shown_ = false;
};

/// Base of the adapter for one kind of view.
template <class Kind>
class AdapterFor : public OutletAdapter {
 public:
  using OutletAdapter::OutletAdapter;

 protected:
  Kind& typedView() const { return static_cast<Kind&>(*view()); }
  std::shared_ptr<View> emptyView() const override { return std::make_shared<Kind>(); }
};

/// The adapter for the view's kind.
std::unique_ptr<OutletAdapter> adapterFor(const std::string& name,
                                          const std::shared_ptr<View>& view,
                                          const std::weak_ptr<ViewController>& screen);

/// The colour as the drawing language takes it.
QColor toQColor(const Color& color);
/// Address of a picture of this name; empty for no name.
QUrl imageAddress(const std::string& imageName);

}  // namespace orlix::shell
