// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQuickItem>
#include <QUrl>
#include <memory>
#include <string>

#include "orlixkit/ui/TableView.h"
#include "orlixkit/ui/WebPageView.h"
#include "shell/OutletAdapter.h"
#include "shell/TableRows.h"

namespace orlix::shell {

class LabelAdapter : public AdapterFor<Label> {
  Q_OBJECT
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(bool html READ html NOTIFY changed)
  Q_PROPERTY(QString fontName READ fontName NOTIFY changed)
  Q_PROPERTY(double fontSize READ fontSize NOTIFY changed)
  Q_PROPERTY(QColor textColor READ textColor NOTIFY changed)
  Q_PROPERTY(bool centered READ centered NOTIFY changed)

 public:
  using AdapterFor::AdapterFor;
  QString text() const { return QString::fromStdString(typedView().text()); }
  bool html() const { return typedView().isHtml(); }
  QString fontName() const { return QString::fromStdString(typedView().font().name); }
  double fontSize() const { return typedView().font().size; }
  QColor textColor() const { return toQColor(typedView().textColor()); }
  bool centered() const { return typedView().alignment() == TextAlignment::center; }
};

class ButtonAdapter : public AdapterFor<Button> {
  Q_OBJECT
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(QColor textColor READ textColor NOTIFY changed)
  Q_PROPERTY(bool enabled READ enabled NOTIFY changed)

 public:
  ButtonAdapter(std::string name, std::shared_ptr<View> view, std::weak_ptr<ViewController> screen);
  ~ButtonAdapter() override;
  void detach() override;
  QString text() const { return QString::fromStdString(typedView().title()); }
  QColor textColor() const { return toQColor(typedView().titleLabel()->textColor()); }
  bool enabled() const { return typedView().enabled(); }
};

class ImageAdapter : public AdapterFor<ImageView> {
  Q_OBJECT
  Q_PROPERTY(QUrl imageSource READ imageSource NOTIFY changed)

 public:
  using AdapterFor::AdapterFor;
  QUrl imageSource() const { return imageAddress(typedView().imageName()); }
};

class ActivityAdapter : public AdapterFor<ActivityIndicator> {
  Q_OBJECT
  Q_PROPERTY(QColor color READ color NOTIFY changed)

 public:
  using AdapterFor::AdapterFor;
  QColor color() const { return toQColor(typedView().color()); }
};

class TableAdapter : public AdapterFor<TableView> {
  Q_OBJECT
  Q_PROPERTY(orlix::shell::TableRows* rows READ rows CONSTANT)
  Q_PROPERTY(bool separators READ separators NOTIFY changed)
  Q_PROPERTY(int checkedRow READ checkedRow NOTIFY changed)

 public:
  TableAdapter(std::string name, const std::shared_ptr<TableView>& table,
               std::weak_ptr<ViewController> screen);
  void detach() override;
  TableRows* rows() { return &rows_; }
  bool separators() const { return typedView().separators(); }
  int checkedRow() const { return rows_.checkedRow(); }
  Q_INVOKABLE void selectRow(int row);
  Q_INVOKABLE void pressRowButton(int row);

 private:
  void viewChanged() override;
  bool hasRow(int row) const;

  TableRows rows_;
};

class PageAdapter : public AdapterFor<WebPageView> {
  Q_OBJECT
  Q_PROPERTY(QQuickItem* page READ page NOTIFY changed)

 public:
  using AdapterFor::AdapterFor;
  QQuickItem* page() const;
};

}  // namespace orlix::shell
