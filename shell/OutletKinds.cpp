// SPDX-License-Identifier: Apache-2.0

#include "shell/OutletKinds.h"

#include <utility>

#include "shell/DrawnWebView.h"
#include "shell/FieldAdapter.h"

namespace orlix::shell {

std::unique_ptr<OutletAdapter> adapterFor(const std::string& name,
                                          const std::shared_ptr<View>& view,
                                          const std::weak_ptr<ViewController>& screen) {
  if (std::dynamic_pointer_cast<Label>(view)) {
    return std::make_unique<LabelAdapter>(name, view, screen);
  }
  if (std::dynamic_pointer_cast<Button>(view)) {
    return std::make_unique<ButtonAdapter>(name, view, screen);
  }
  if (std::dynamic_pointer_cast<ImageView>(view)) {
    return std::make_unique<ImageAdapter>(name, view, screen);
  }
  if (std::dynamic_pointer_cast<ActivityIndicator>(view)) {
    return std::make_unique<ActivityAdapter>(name, view, screen);
  }
  if (std::dynamic_pointer_cast<WebPageView>(view)) {
    return std::make_unique<PageAdapter>(name, view, screen);
  }
  if (const auto table = std::dynamic_pointer_cast<TableView>(view)) {
    return std::make_unique<TableAdapter>(name, table, screen);
  }
  if (const auto field = std::dynamic_pointer_cast<TextField>(view)) {
    return std::make_unique<FieldAdapter>(name, field, screen);
  }
  return std::make_unique<OutletAdapter>(name, view, screen);
}

ButtonAdapter::ButtonAdapter(std::string name, std::shared_ptr<View> view,
                             std::weak_ptr<ViewController> screen)
    : AdapterFor(std::move(name), std::move(view), std::move(screen)) {
  typedView().titleLabel()->onChange = [this] { viewChanged(); };
}

ButtonAdapter::~ButtonAdapter() { typedView().titleLabel()->onChange = {}; }

void ButtonAdapter::detach() {
  typedView().titleLabel()->onChange = {};
  AdapterFor::detach();
}

TableAdapter::TableAdapter(std::string name, const std::shared_ptr<TableView>& table,
                           std::weak_ptr<ViewController> screen)
    : AdapterFor(std::move(name), table, std::move(screen)), rows_(table) {}

void TableAdapter::detach() {
  rows_.detach();
  AdapterFor::detach();
}

void TableAdapter::viewChanged() {
  rows_.refresh();
  Q_EMIT changed();
}

bool TableAdapter::hasRow(int row) const {
  return row >= 0 && static_cast<std::size_t>(row) < typedView().rowCount();
}

void TableAdapter::selectRow(int row) {
  touch([this, row, held = view()] {
    if (hasRow(row)) {
      typedView().select(static_cast<std::size_t>(row));
    }
  });
}

void TableAdapter::pressRowButton(int row) {
  touch([this, row] {
    const auto button =
        hasRow(row) ? typedView().cell(static_cast<std::size_t>(row)).button : nullptr;
    if (button && button->onTouchUpInside) {
      button->onTouchUpInside();
    }
  });
}

QQuickItem* PageAdapter::page() const {
  auto* drawn = dynamic_cast<DrawnWebView*>(typedView().page().get());
  return drawn != nullptr ? drawn->item() : nullptr;
}

}  // namespace orlix::shell
