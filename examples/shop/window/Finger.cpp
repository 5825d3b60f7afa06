// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/window/Finger.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>

#include "examples/shop/Script.h"

namespace orlix::shop {

namespace {

/// More than the time within which two touches count as one double touch, in milliseconds.
constexpr qint64 kBetweenTouches = 1000;

/// What of the item can be seen: inside the window, and inside all that cuts off what is in it.
QRectF visiblePart(const QQuickItem& item, const QQuickWindow& window) {
  QRectF seen = item.mapRectToScene(QRectF({0, 0}, item.size()));
  for (const QQuickItem* above = item.parentItem(); above != nullptr; above = above->parentItem()) {
    if (above->clip()) {
      seen = seen.intersected(above->mapRectToScene(QRectF({0, 0}, above->size())));
    }
  }
  return seen.intersected(QRectF({0, 0}, QSizeF(window.size())));
}

/// Some items have a value of their own by this name.
bool isEnabled(const QQuickItem& item) {
  return item.isEnabled() && item.property("enabled").toBool();
}

/// The item that a touch at this point of the scene goes to: from the front to the back, the first
/// that listens.
QQuickItem* receiverAt(QQuickItem& item, QPointF scene) {
  const bool inside = item.contains(item.mapFromScene(scene));
  if (!item.isVisible() || !isEnabled(item) || (item.clip() && !inside)) {
    return nullptr;
  }
  QList<QQuickItem*> children = item.childItems();
  std::stable_sort(
      children.begin(), children.end(),
      [](const QQuickItem* one, const QQuickItem* other) { return one->z() < other->z(); });
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    if (QQuickItem* found = receiverAt(**child, scene)) {
      return found;
    }
  }
  return inside && item.acceptedMouseButtons().testFlag(Qt::LeftButton) ? &item : nullptr;
}

}  // namespace

void Finger::touch(QQuickItem& item, const QString& name) {
  const auto refuse = [&](const char* why) {
    throw ScriptError(name.toStdString() + " cannot be touched: " + why);
  };
  if (!item.isVisible()) {
    refuse("it is not drawn");
  }
  if (!isEnabled(item)) {
    refuse("it is disabled");
  }
  const QRectF seen = visiblePart(item, window_);
  if (seen.isEmpty()) {
    refuse("it is out of sight");
  }
  const QPointF at = seen.center();
  const QQuickItem* const receiver = receiverAt(*window_.contentItem(), at);
  if (receiver != &item && !item.isAncestorOf(receiver)) {
    refuse("something else is in front of it");
  }
  const QPointF global = window_.mapToGlobal(at);
  const qint64 now = clock_.elapsed() + kBetweenTouches * ++touches_;
  QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  press.setTimestamp(static_cast<quint64>(now));
  QCoreApplication::sendEvent(&window_, &press);
  QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton,
                      Qt::NoModifier);
  release.setTimestamp(static_cast<quint64>(now + 1));
  QCoreApplication::sendEvent(&window_, &release);
}

void Finger::press(int key, const QString& text) {
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&window_, &event);
  }
}

}  // namespace orlix::shop
