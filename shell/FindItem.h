// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQuickItem>
#include <functional>

namespace orlix::shell {

/// The first item, `root` included, that `matches`, in drawing order. Also finds items of repeaters
/// and lists, which QObject::findChild does not.
inline QQuickItem* findItem(QQuickItem& root,
                            const std::function<bool(const QQuickItem&)>& matches) {
  if (matches(root)) {
    return &root;
  }
  for (QQuickItem* child : root.childItems()) {
    if (QQuickItem* found = findItem(*child, matches)) {
      return found;
    }
  }
  return nullptr;
}

inline QQuickItem* findItem(QQuickItem& root, const QString& objectName) {
  return findItem(root, [&](const QQuickItem& item) { return item.objectName() == objectName; });
}

}  // namespace orlix::shell
