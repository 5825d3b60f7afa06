// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/window/Warnings.h"

#include <QtGlobal>
#include <mutex>

namespace orlix::shop {

namespace {

struct Kept {
  std::mutex lock;
  QStringList texts;
  QtMessageHandler before = nullptr;
};

Kept& kept() {
  static Kept one;
  return one;
}

/// The web engine's module says of its own types that they are no proper ones, at each import, and
/// that it draws in software where there is nothing else.
bool isOfTheWebEngineItself(const QString& text) {
  return text.startsWith(QStringLiteral("No suitable graphics backend found")) ||
         (text.startsWith(QStringLiteral("QWebEngine")) &&
          text.contains(QStringLiteral("neither a QObject")));
}

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if ((type == QtWarningMsg || type == QtCriticalMsg) && !isOfTheWebEngineItself(text)) {
    const std::lock_guard lock(kept().lock);
    kept().texts.append(text);
  }
  if (kept().before != nullptr) {
    kept().before(type, context, text);
  }
}

}  // namespace

Warnings::Warnings() {
  kept().texts.clear();
  kept().before = qInstallMessageHandler(keep);
}

Warnings::~Warnings() { qInstallMessageHandler(kept().before); }

QStringList Warnings::texts() const {
  const std::lock_guard lock(kept().lock);
  return kept().texts;
}

}  // namespace orlix::shop
