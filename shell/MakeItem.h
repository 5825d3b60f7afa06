// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QRegularExpression>
#include <QVariantMap>
#include <memory>
#include <string>

namespace orlix::shell {

/// Why a component cannot be created; names the missing package if there is one.
inline std::string reasonOf(const QQmlComponent& component) {
  const QString errors = component.errorString().trimmed();
  static const QRegularExpression missing(
      QStringLiteral("module \"([\\w.]+)\" (is not installed|plugin \"\\w+\" not found)"));
  const QRegularExpressionMatch match = missing.match(errors);
  if (!match.hasMatch()) {
    return errors.toStdString();
  }
  const QString module = match.captured(1);
  return QStringLiteral("The QML module %1 is not installed (Debian package qml6-module-%2).")
      .arg(module, module.toLower().replace(u'.', u'-'))
      .toStdString();
}

/// Creates the component's item; null on failure, for which see `reasonOf`. (Qt 6.4 crashes when it
/// creates a component with errors.)
inline std::unique_ptr<QQuickItem> makeItem(QQmlComponent& component,
                                            const QVariantMap& properties) {
  std::unique_ptr<QObject> made(
      component.isReady() ? component.createWithInitialProperties(properties) : nullptr);
  auto* const item = qobject_cast<QQuickItem*>(made.get());
  if (item == nullptr) {
    return nullptr;
  }
  QQmlEngine::setObjectOwnership(item, QQmlEngine::CppOwnership);
  made.release();
  return std::unique_ptr<QQuickItem>(item);
}

}  // namespace orlix::shell
