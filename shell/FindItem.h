#pragma once

#include <QQuickItem>
#include <functional>

namespace orlix::shell {

/// The first item, `root` included, that `matches`; in the order of drawing. Items of repeaters and
/// lists are found, which a search among an object's children leaves out.
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
