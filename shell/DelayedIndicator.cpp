// SPDX-License-Identifier: Apache-2.0

#include "shell/DelayedIndicator.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <memory>
#include <utility>

namespace orlix::shell {

namespace {

constexpr double kAboveAlerts = 3;

}  // namespace

DelayedIndicator::DelayedIndicator(QQmlEngine& engine, QQuickItem& layers, DrawingTimes times,
                                   std::function<QRectF()> beforeDrawing)
    : times_(times), beforeDrawing_(std::move(beforeDrawing)) {
  auto* context = std::make_unique<QQmlContext>(&engine, &layers).release();
  context->setContextProperty(QStringLiteral("orlixProgress"), &progress_);
  QQmlComponent component(
      &engine, QUrl(QStringLiteral("qrc:/orlix/qml/OrlixKit/Components/OxProgress.qml")));
  item_ = qobject_cast<QQuickItem*>(component.create(context));
  if (!item_) {
    qWarning("OrlixKit: The progress indicator cannot be drawn: %s",
             qUtf8Printable(component.errorString()));
    return;
  }
  item_->setObjectName(QStringLiteral("progressIndicator"));
  item_->setParentItem(&layers);
  item_->setParent(&layers);
  item_->setZ(kAboveAlerts);
  item_->setEnabled(false);
  item_->setVisible(false);
  connect(&appear_, &QAbstractAnimation::finished, this, &DelayedIndicator::draw);
  connect(&stay_, &QAbstractAnimation::finished, this, [this] {
    if (!wanted_) {
      startFade();
    }
  });
  for (QVariantAnimation* animation : {&appear_, &stay_, &fade_}) {
    animation->setStartValue(1.0);
    animation->setEndValue(0.0);
  }
  fade_.setEasingCurve(QEasingCurve::OutCubic);
  connect(&fade_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& opacity) { item_->setOpacity(opacity.toDouble()); });
  connect(&fade_, &QAbstractAnimation::finished, this, &DelayedIndicator::remove);
}

void DelayedIndicator::show(const ProgressIndicator& indicator) {
  wanted_ = true;
  progress_.show(indicator);
  fade_.stop();
  if (isDrawn()) {
    draw();
  } else if (appear_.state() == QAbstractAnimation::Stopped) {
    appear_.setDuration(static_cast<int>(times_.appear.count()));
    appear_.start();  // without a duration it ends at once
  }
}

void DelayedIndicator::draw() {
  if (!item_ || !wanted_) {
    return;
  }
  appear_.stop();
  if (!isDrawn()) {
    stay_.setDuration(static_cast<int>(times_.stay.count()));
    stay_.start();
  }
  item_->setProperty("keptInSight", beforeDrawing_());
  item_->setOpacity(1);
  item_->setVisible(true);
}

void DelayedIndicator::fadeOut() {
  wanted_ = false;
  appear_.stop();
  if (isDrawn() && stay_.state() == QAbstractAnimation::Stopped) {
    startFade();
  }
}

void DelayedIndicator::hide() {
  const bool fades = fade_.state() != QAbstractAnimation::Stopped;
  const bool stays = isDrawn() && stay_.state() != QAbstractAnimation::Stopped;
  wanted_ = false;
  appear_.stop();
  if (!fades && !stays) {
    remove();
  }
}

void DelayedIndicator::startFade() {
  fade_.setDuration(static_cast<int>(times_.fade.count()));
  fade_.start();
}

void DelayedIndicator::remove() {
  progress_.hide();
  if (item_) {
    item_->setVisible(false);
  }
}

void DelayedIndicator::endDelays() {
  appear_.stop();
  stay_.stop();
  fade_.stop();
  if (wanted_) {
    draw();
  } else {
    remove();
  }
}

void DelayedIndicator::place(QSizeF window) {
  if (item_) {
    item_->setSize(window);
    if (isDrawn()) {
      item_->setProperty("keptInSight", beforeDrawing_());
    }
  }
}

}  // namespace orlix::shell
