// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQuickItem>
#include <functional>
#include <memory>
#include <vector>

namespace orlix::shell {

/// Masks touches while the progress indicator requires it, except on given items, such as the
/// cancel button of an operation that may never end.
class TouchMask : public QQuickItem {
 public:
  /// `holes` returns the items that stay reachable; called at each touch.
  TouchMask(QQuickItem* parent, std::function<std::vector<QQuickItem*>()> holes)
      : QQuickItem(parent), holes_(std::move(holes)) {
    setAcceptedMouseButtons(Qt::AllButtons);
    setAcceptTouchEvents(true);
    setAcceptHoverEvents(true);
  }

  bool contains(const QPointF& point) const override {
    if (!QQuickItem::contains(point)) {
      return false;
    }
    for (const QQuickItem* hole : holes_()) {
      if (hole->isVisible() && hole->contains(mapToItem(hole, point))) {
        return false;
      }
    }
    return true;
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override { event->accept(); }
  void wheelEvent(QWheelEvent* event) override { event->accept(); }
  void touchEvent(QTouchEvent* event) override { event->accept(); }

 private:
  const std::function<std::vector<QQuickItem*>()> holes_;
};

}  // namespace orlix::shell
