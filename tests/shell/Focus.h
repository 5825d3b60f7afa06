#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <string>

namespace orlix::shell {

/// Name of what the keyboard stands on in the window.
inline std::string focusIn(const QQuickWindow& window) {
  const QQuickItem* item = window.activeFocusItem();
  while (item != nullptr && item->objectName().isEmpty()) {
    item = item->parentItem();
  }
  return item != nullptr ? item->objectName().toStdString() : "";
}

}  // namespace orlix::shell
