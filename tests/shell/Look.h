// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <vector>

#include "shell/FindItem.h"

namespace orlix::shell {

inline QRectF inScene(const QQuickItem& item) {
  return item.mapRectToScene({0, 0, item.width(), item.height()});
}

/// The visible rectangle of the item, in whole pixels of the window.
inline QRect seenPart(const QQuickItem& item, const QQuickWindow& window) {
  QRectF part = item.mapRectToScene({0, 0, item.width(), item.height()});
  for (const QQuickItem* above = item.parentItem(); above != nullptr; above = above->parentItem()) {
    if (above->clip()) {
      part = part.intersected(above->mapRectToScene({0, 0, above->width(), above->height()}));
    }
  }
  return part.intersected(QRectF({0, 0}, QSizeF(window.size()))).toAlignedRect();
}

/// The item and its visible children.
inline std::vector<QQuickItem*> seen(QQuickItem& root) {
  std::vector<QQuickItem*> found;
  findItem(root, [&found](const QQuickItem& item) {
    if (item.isVisible() && item.width() > 0 && item.height() > 0) {
      found.push_back(const_cast<QQuickItem*>(&item));
    }
    return false;
  });
  return found;
}

}  // namespace orlix::shell
