// SPDX-License-Identifier: Apache-2.0

#include "shell/DrawnScreen.h"

#include <QQmlComponent>
#include <QtDebug>
#include <algorithm>

#include "orlixkit/ui/PresentationController.h"
#include "shell/MakeItem.h"

namespace orlix::shell {

namespace {

/// A card grows slightly while it fades in.
constexpr double kSmallest = 0.96;

QQuickItem* make(QQmlEngine& engine, const QString& address, const QVariantMap& properties,
                 QQuickItem* parent) {
  QQmlComponent component(&engine, QUrl(address));
  std::unique_ptr<QQuickItem> made = makeItem(component, properties);
  if (!made) {
    qWarning("OrlixKit: %s cannot be drawn: %s", qUtf8Printable(address),
             reasonOf(component).c_str());
    return nullptr;
  }
  made->setParentItem(parent);
  return made.release();
}

/// Colour that dims the screens below; transparent for a screen that fills the window.
QColor dimmingOf(const ViewController& controller) {
  const auto& presentation = controller.presentationController();
  if (!presentation || presentation->containerView()->subviews().empty()) {
    return Qt::transparent;
  }
  return toQColor(presentation->containerView()->subviews().front()->backgroundColor());
}

}  // namespace

DrawnScreen::DrawnScreen(QQmlEngine& engine, QQuickItem& layers,
                         std::shared_ptr<ViewController> controller)
    : controller_(std::move(controller)) {
  layer_ = make(engine, QStringLiteral("qrc:/orlix/presentation/Presentation.qml"),
                {{QStringLiteral("dimming"), dimmingOf(*controller_)}}, &layers);
  if (const auto alert = std::dynamic_pointer_cast<AlertController>(controller_)) {
    alert_ = std::make_unique<AlertAdapter>(alert);
    content_ =
        make(engine, QStringLiteral("qrc:/orlix/qml/OrlixKit/Components/OxAlert.qml"),
             {{QStringLiteral("alert"), QVariant::fromValue<QObject*>(alert_.get())}}, layer_);
  } else {
    drawScreen(engine);
  }
}

void DrawnScreen::drawScreen(QQmlEngine& engine) {
  // A container is drawn as its visible child.
  const auto child = controller_->visibleChild();
  const auto shown = child ? child : controller_;
  screen_ = std::make_unique<ScreenAdapter>(shown);
  content_ =
      make(engine, "qrc:/orlix/storyboard/" + screen_->identifier() + ".qml",
           {{QStringLiteral("screen"), QVariant::fromValue<QObject*>(screen_.get())}}, layer_);
}

DrawnScreen::~DrawnScreen() {
  // Release the items before the objects that they are bound to; deleteLater keeps this order.
  if (content_) {
    content_->setVisible(false);
    content_->setParentItem(nullptr);
    content_->deleteLater();
  }
  if (layer_) {
    layer_->setParentItem(nullptr);
    layer_->deleteLater();
  }
  if (screen_) {
    screen_->detach();
    screen_.release()->deleteLater();
  }
  if (alert_) {
    alert_->detach();
    alert_.release()->deleteLater();
  }
}

void DrawnScreen::place(QSizeF window) {
  if (!layer_) {
    return;
  }
  layer_->setSize(window);
  if (!content_) {
    return;
  }
  QRectF place({0, 0}, window);
  if (controller_->presentationController()) {
    const Rect frame = controller_->view()->frame();
    // A card that is taller than a small window is drawn as tall as the window.
    const double width = std::min(frame.width, window.width());
    const double height = std::min(frame.height, window.height());
    place = QRectF(std::clamp(frame.x, 0.0, window.width() - width),
                   std::clamp(frame.y, 0.0, window.height() - height), width, height);
  }
  content_->setPosition(place.topLeft());
  content_->setSize(place.size());
}

void DrawnScreen::fade(double amount, bool dimming) {
  amount_ = amount;
  if (layer_) {
    layer_->setProperty("dimmed", dimming ? amount : 1.0);
  }
  if (content_) {
    content_->setOpacity(amount);
    content_->setScale(kSmallest + (1 - kSmallest) * amount);
  }
}

std::unique_ptr<QQuickItem> DrawnScreen::takeDimming() {
  if (!layer_ || layer_->property("dimming").value<QColor>().alpha() == 0) {
    return nullptr;
  }
  std::unique_ptr<QQuickItem> taken(layer_.data());
  if (content_) {
    content_->setVisible(false);
    content_->setParentItem(nullptr);
  }
  layer_.clear();
  return taken;
}

}  // namespace orlix::shell
