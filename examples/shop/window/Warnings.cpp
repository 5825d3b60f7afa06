#include "examples/shop/window/Warnings.h"

#include <mutex>

#include <QtLogging>

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

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtWarningMsg || type == QtCriticalMsg) {
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
