// SPDX-License-Identifier: Apache-2.0

#include "shell/ScreenPresenter.h"

#include <QDir>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQmlContext>
#include <QTimer>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/ui/PresentationController.h"
#include "shell/FindItem.h"
#include "shell/MakeItem.h"
#include "shell/ResourceImages.h"
#include "shell/TouchMask.h"

namespace orlix::shell {

namespace {

constexpr double kAboveTheHost = 10000;
constexpr double kMask = 1;  // alerts above it, screens below
constexpr double kAlerts = 2;
constexpr double kIndicator = 3;

Application& application() { return Host::current().application(); }

/// Whether the item is in a web page, which handles Tab among its own controls.
bool isInPage(const QQuickItem* item) {
  while (item != nullptr && !item->inherits("QQuickWebEngineView")) {
    item = item->parentItem();
  }
  return item != nullptr;
}

}  // namespace

struct ScreenPresenter::Fade {
  QVariantAnimation animation;
  Task done;
};

ScreenPresenter::ScreenPresenter(QQmlEngine& engine, QQuickWindow& window,
                                 std::chrono::milliseconds fade)
    : engine_(engine), window_(window), fade_(fade) {
  layers_ = std::make_unique<QQuickItem>(window.contentItem()).release();
  layers_->setZ(kAboveTheHost);
  auto mask =
      std::make_unique<TouchMask>(layers_.data(), [this] { return itemsInReachUnderMask(); });
  mask->setObjectName(QStringLiteral("touchMask"));
  mask->setZ(kMask);
  mask->setVisible(false);
  mask_ = mask.release();
  auto* context = std::make_unique<QQmlContext>(&engine, layers_.data()).release();
  context->setContextProperty(QStringLiteral("orlixProgress"), &progress_);
  QQmlComponent component(
      &engine, QUrl(QStringLiteral("qrc:/orlix/qml/OrlixKit/Components/OxProgress.qml")));
  indicator_ = qobject_cast<QQuickItem*>(component.create(context));
  if (indicator_) {
    indicator_->setObjectName(QStringLiteral("progressIndicator"));
    indicator_->setParentItem(layers_);
    indicator_->setParent(layers_);
    indicator_->setZ(kIndicator);
    indicator_->setEnabled(false);
    indicator_->setVisible(false);
  } else {
    qWarning("OrlixKit: The progress indicator cannot be drawn: %s",
             qUtf8Printable(component.errorString()));
  }
  connect(&window, &QWindow::widthChanged, this, &ScreenPresenter::resized);
  connect(&window, &QWindow::heightChanged, this, &ScreenPresenter::resized);
  connect(&window, &QQuickWindow::activeFocusItemChanged, this, &ScreenPresenter::focusMoved);
  window.installEventFilter(this);
  resized();
  warmUp();
}

ScreenPresenter::~ScreenPresenter() {
  // Complete pending animations, so that their callbacks run.
  for (const auto& fade : std::exchange(fades_, {})) {
    if (Host::isInstalled()) {
      Host::current().ports().mainQueue->async(std::exchange(fade->done, {}));
    }
  }
  drawn_.clear();
  lingering_.reset();
  // Delete at once, unlike the screens: the items refer to members of this object.
  delete layers_.data();
}

void ScreenPresenter::warmUp() {
  QStringList files{QStringLiteral("qrc:/orlix/presentation/Presentation.qml"),
                    QStringLiteral("qrc:/orlix/storyboard/Waiting.qml"),
                    QStringLiteral("qrc:/orlix/qml/OrlixKit/Components/OxAlert.qml")};
  for (const QString& screen : QDir(QStringLiteral(":/orlix/storyboard")).entryList()) {
    files.append("qrc:/orlix/storyboard/" + screen);
  }
  for (const QString& file : files) {
    warm_.push_back(
        std::make_unique<QQmlComponent>(&engine_, QUrl(file), QQmlComponent::Asynchronous));
  }
}

ScreenPresenter::Drawn::iterator ScreenPresenter::find(const ViewController& controller) {
  return std::find_if(drawn_.begin(), drawn_.end(),
                      [&](const auto& one) { return one->controller().get() == &controller; });
}

DrawnScreen& ScreenPresenter::draw(const std::shared_ptr<ViewController>& controller) {
  if (drawn_.empty()) {
    hostFocus_ = window_.activeFocusItem();
  }
  drawn_.push_back(std::make_unique<DrawnScreen>(engine_, *layers_, controller));
  DrawnScreen& made = *drawn_.back();
  if (made.isAlert() && made.layer() != nullptr) {
    made.layer()->setZ(kAlerts);
  }
  made.place(layers_->size());
  stackChanged();
  return made;
}

void ScreenPresenter::didPresent(const std::shared_ptr<ViewController>& controller) {
  const auto found = find(*controller);
  DrawnScreen& one = found == drawn_.end() ? draw(controller) : **found;
  lingering_.reset();
  one.fade(1, true);
  one.place(layers_->size());  // its view may have been moved when it appeared
  stackChanged();
}

void ScreenPresenter::didDismiss(const std::shared_ptr<ViewController>& controller) {
  const auto found = find(*controller);
  if (found == drawn_.end()) {
    return;
  }
  if ((*found)->faded() > 0) {
    // Dismissed without animation, usually to present the next screen: keep the dimming meanwhile,
    // so that it does not flicker.
    lingering_ = (*found)->takeDimming();
    QTimer::singleShot(0, this, [this] { lingering_.reset(); });
  }
  drawn_.erase(found);
  stackChanged();
  if (drawn_.empty()) {
    Q_EMIT emptied();
  }
}

bool ScreenPresenter::animate(const std::shared_ptr<ViewController>& controller,
                              Transition transition, const Task& done) {
  if (transition == Transition::progress) {
    const unsigned shown = indicatorShown_;
    play(
        [this, shown](double amount) {
          if (indicator_ && shown == indicatorShown_) {
            indicator_->setOpacity(1 - amount);
            indicator_->setVisible(amount < 1);
          }
        },
        done);
    return true;
  }
  if (transition == Transition::presentation) {
    const bool dimmedAlready = lingering_ != nullptr;
    draw(controller).fade(0, !dimmedAlready);
    lingering_.reset();
    play(
        [this, weak = std::weak_ptr(controller), dimmedAlready](double amount) {
          const auto there = weak.lock();
          const auto found = there ? find(*there) : drawn_.end();
          if (found != drawn_.end() && !there->isBeingDismissed()) {
            (*found)->fade(amount, !dimmedAlready);
          }
        },
        done);
    return true;
  }
  play(
      [this, weak = std::weak_ptr(controller)](double amount) {
        const auto there = weak.lock();
        // Screens presented on this one are dismissed with it.
        for (auto one = there ? find(*there) : drawn_.end(); one != drawn_.end(); ++one) {
          (*one)->fade(std::min((*one)->faded(), 1 - amount), true);
        }
      },
      done);
  return true;
}

void ScreenPresenter::play(const std::function<void(double)>& step, const Task& done) {
  fades_.push_back(std::make_unique<Fade>());
  Fade& fade = *fades_.back();
  fade.done = done;
  fade.animation.setStartValue(0.0);
  fade.animation.setEndValue(1.0);
  fade.animation.setDuration(static_cast<int>(fade_.count()));
  fade.animation.setEasingCurve(QEasingCurve::OutCubic);
  connect(&fade.animation, &QVariantAnimation::valueChanged, this,
          [step](const QVariant& value) { step(value.toDouble()); });
  connect(&fade.animation, &QAbstractAnimation::finished, this,
          [this, animation = &fade.animation] { end(animation); });
  fade.animation.start();
}

void ScreenPresenter::end(const QVariantAnimation* animation) {
  const auto found = std::find_if(fades_.begin(), fades_.end(), [animation](const auto& fade) {
    return &fade->animation == animation;
  });
  if (found == fades_.end()) {
    return;
  }
  // Defer the release of the animation, since it is the caller.
  std::shared_ptr<Fade> ended = std::move(*found);
  fades_.erase(found);
  QTimer::singleShot(0, this, [ended] {});
  Host::current().ports().mainQueue->async(std::exchange(ended->done, {}));
}

void ScreenPresenter::progressChanged(const ProgressIndicator& indicator) {
  ++indicatorShown_;
  if (indicator.visible()) {
    progress_.show(indicator);
  } else {
    progress_.hide();
  }
  if (indicator_) {
    indicator_->setOpacity(1);
    indicator_->setVisible(indicator.visible());
  }
  maskChanged();
}

void ScreenPresenter::maskChanged() {
  mask_->setVisible(application().progressIndicator().blocksInput());
  for (const auto& one : drawn_) {
    if (one->screen() != nullptr) {
      one->screen()->refreshReachable();
    }
  }
}

void ScreenPresenter::resized() {
  const QSizeF size = window_.size();
  application().mainScreen = Size{size.width(), size.height()};
  application().statusBarOrientation =
      size.width() > size.height() ? Orientation::landscape : Orientation::portrait;
  layers_->setSize(size);
  mask_->setSize(size);
  if (indicator_) {
    indicator_->setSize(size);
  }
  for (const auto& one : drawn_) {
    if (const auto& presentation = one->controller()->presentationController()) {
      presentation->containerView()->setFrame({0, 0, size.width(), size.height()});
      one->controller()->view()->setFrame(presentation->frameOfPresentedViewInContainerView());
    }
    one->place(size);
  }
}

void ScreenPresenter::stackChanged() {
  maskChanged();  // the indicator's screen may have entered or left the window
  for (const auto& one : drawn_) {
    if (one->layer() != nullptr) {
      one->layer()->setEnabled(one == drawn_.back());
    }
  }
  if (drawn_.empty()) {
    if (hostFocus_) {
      hostFocus_->forceActiveFocus();
    }
    return;
  }
  // A screen gets the focus when its transition has ended.
  const DrawnScreen& front = *drawn_.back();
  if (front.content() != nullptr && front.controller()->hasAppeared()) {
    front.content()->forceActiveFocus();
  }
}

/// A web page passes the focus, after its last control, to the next item in the window; but the
/// host's controls are covered while a screen is presented.
void ScreenPresenter::focusMoved() {
  const QQuickItem* const focus = window_.activeFocusItem();
  if (drawn_.empty() || focus == nullptr || focus == window_.contentItem() ||
      layers_->isAncestorOf(focus)) {
    return;
  }
  QTimer::singleShot(0, this, [this] {
    if (!drawn_.empty() && drawn_.back()->content() != nullptr) {
      drawn_.back()->content()->forceActiveFocus();
      moveFocus(true);
    }
  });
}

bool ScreenPresenter::isMasked() const {
  return application().progressIndicator().blocksInput() && !drawn_.empty() &&
         !drawn_.back()->isAlert();
}

std::vector<QQuickItem*> ScreenPresenter::itemsInReachUnderMask() const {
  std::vector<QQuickItem*> found;
  const DrawnScreen* const screen = top();
  if (screen == nullptr || screen->isAlert() || screen->content() == nullptr) {
    return found;
  }
  const auto child = screen->controller()->visibleChild();
  const auto& shown = child ? child : screen->controller();
  const auto add = [&](const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      auto* item = shown->isReachableUnderMask(name)
                       ? findItem(*screen->content(), QString::fromStdString(name))
                       : nullptr;
      if (item != nullptr) {
        found.push_back(item);
      }
    }
  };
  add(shown->outletNames());
  add(shown->actionNames());
  return found;
}

bool ScreenPresenter::moveFocus(bool forward) {
  QQuickItem* const content = top()->content();
  QQuickItem* item = window_.activeFocusItem();
  if (content == nullptr || item == nullptr) {
    return false;
  }
  // The focus chain is a cycle through the whole window, which contains the top screen's items.
  constexpr int kFarEnough = 2000;
  for (int step = 0; step < kFarEnough; ++step) {
    item = item->nextItemInFocusChain(forward);
    if (item == nullptr) {
      return false;
    }
    if (content->isAncestorOf(item) && item->isVisible() && item->isEnabled() &&
        item->activeFocusOnTab()) {
      item->forceActiveFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
      return true;
    }
  }
  return false;
}

bool ScreenPresenter::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (watched != &window_ || !isKey || drawn_.empty()) {
    return QObject::eventFilter(watched, event);
  }
  const auto* key = static_cast<const QKeyEvent*>(event);
  if (isMasked() && key->key() != Qt::Key_Escape) {
    const QQuickItem* const focus = window_.activeFocusItem();
    const auto inReach = itemsInReachUnderMask();
    return std::none_of(inReach.begin(), inReach.end(), [focus](const QQuickItem* item) {
      return focus != nullptr && (item == focus || item->isAncestorOf(focus));
    });
  }
  const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
  if (tab && event->type() == QEvent::KeyPress && !isInPage(window_.activeFocusItem())) {
    const bool back = key->key() == Qt::Key_Backtab || key->modifiers().testFlag(Qt::ShiftModifier);
    moveFocus(!back);
    return true;
  }
  return false;
}

void prepareEngine(QQmlEngine& engine, const std::shared_ptr<const Bundle>& bundle) {
  for (const char* module : kImportedModules) {
    QQmlComponent component(&engine);
    component.setData(QByteArrayLiteral("import ") + module + "\nimport QtQml\nQtObject {}",
                      QUrl());
    if (component.isError()) {
      throw std::runtime_error("OrlixKit: The screens cannot be drawn. " + reasonOf(component));
    }
  }
  engine.addImportPath(QStringLiteral("qrc:/orlix/qml"));
  engine.addImageProvider(QStringLiteral("orlix"),
                          std::make_unique<ResourceImages>(bundle).release());
  for (const std::string& name : {OXUtil::regularFont(), OXUtil::boldFont(), OXUtil::lightFont()}) {
    if (const auto font = bundle->resource(name, "otf")) {
      QFontDatabase::addApplicationFontFromData(QByteArray(
          reinterpret_cast<const char*>(font->data()), static_cast<qsizetype>(font->size())));
    }
  }
}

}  // namespace orlix::shell
