// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <string>

namespace orlix::shell {

/// Name of the outlet or control that the item is, or is a part of.
inline std::string nameOf(const QQuickItem* item) {
  while (item != nullptr && item->objectName().isEmpty()) {
    item = item->parentItem();
  }
  return item != nullptr ? item->objectName().toStdString() : "";
}

/// Name of the window's item with the keyboard focus.
inline std::string focusIn(const QQuickWindow& window) { return nameOf(window.activeFocusItem()); }

}  // namespace orlix::shell
