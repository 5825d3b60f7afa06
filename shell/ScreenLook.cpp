// SPDX-License-Identifier: Apache-2.0

#include "shell/ScreenLook.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlContext>
#include <QScreen>
#include <algorithm>
#include <memory>

namespace orlix::shell {

namespace {

constexpr double kUsualDots = 96;
constexpr double kLargestScale = 3;  // a word of a title must fit the width of a sheet

}  // namespace

ScreenLook& ScreenLook::of(QQmlEngine& engine) {
  const QString name = QStringLiteral("orlixLook");
  auto* look =
      qobject_cast<ScreenLook*>(engine.rootContext()->contextProperty(name).value<QObject*>());
  if (look == nullptr) {
    look = std::unique_ptr<ScreenLook>(new ScreenLook).release();
    look->setParent(&engine);
    engine.rootContext()->setContextProperty(name, look);
  }
  return *look;
}

ScreenLook::ScreenLook() {
  qGuiApp->installEventFilter(this);
  connect(qGuiApp, &QGuiApplication::layoutDirectionChanged, this, &ScreenLook::changed);
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &ScreenLook::changed);
  }
}

void ScreenLook::setOptions(const LookOptions& options) {
  options_ = options;
  Q_EMIT changed();
}

bool ScreenLook::dark() const {
  if (options_.colors != ColorScheme::fromPalette) {
    return options_.colors == ColorScheme::dark;
  }
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

double ScreenLook::textScale() const {
  const QScreen* screen = QGuiApplication::primaryScreen();
  const double dots = screen != nullptr ? screen->logicalDotsPerInch() : kUsualDots;
  return std::clamp(options_.textScale * dots / kUsualDots, 1.0, kLargestScale);
}

bool ScreenLook::mirrored() const { return QGuiApplication::isRightToLeft(); }

bool ScreenLook::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange) {
    Q_EMIT changed();
  }
  return false;
}

}  // namespace orlix::shell
