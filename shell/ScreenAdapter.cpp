#include "shell/ScreenAdapter.h"

#include <QVariant>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/ui/FieldTouch.h"

namespace orlix::shell {

ScreenAdapter::ScreenAdapter(const std::shared_ptr<ViewController>& controller)
    : QQmlPropertyMap(this, nullptr),
      identifier_(QString::fromStdString(controller->identifier())),
      controller_(controller) {
  screen_ = std::make_shared<OutletAdapter::Screen>(OutletAdapter::Screen{
      .touch = [this](const std::string& name, const Task& doing) { touch(name, doing); },
      .changed = [this] { refreshShown(); },
      .perform =
          [weak = controller_](const std::string& name) {
            if (const auto there = weak.lock()) {
              there->performAction(name);
            }
          },
      .hasAction =
          [weak = controller_](const std::string& name) {
            const auto there = weak.lock();
            return there && there->hasAction(name);
          },
      .touchField =
          [weak = controller_](TextField& field) {
            const auto there = weak.lock();
            return there && touchField(*there, field);
          },
      .reachable =
          [weak = controller_](const std::string& name) {
            const auto there = weak.lock();
            return there && (!Host::current().application().progressIndicator().blocksInput() ||
                             there->isReachableUnderMask(name));
          }});
  add("view", controller->view());
  for (const std::string& name : controller->outletNames()) {
    add(name, controller->outletNamed(name));
  }
  freeze();
}

ScreenAdapter::~ScreenAdapter() { detach(); }

void ScreenAdapter::add(const std::string& name, const std::shared_ptr<View>& view) {
  auto made = std::make_unique<OutletAdapter>(name, view, screen_);
  insert(QString::fromStdString(name), QVariant::fromValue<QObject*>(made.get()));
  outlets_[name] = std::move(made);
}

void ScreenAdapter::detach() {
  controller_.reset();
  for (const auto& [name, adapter] : outlets_) {
    adapter->detach();
  }
}

QVariant ScreenAdapter::updateValue(const QString& key, const QVariant&) { return value(key); }

bool ScreenAdapter::hasAction(const QString& name) const {
  const auto there = controller_.lock();
  return there && there->hasAction(name.toStdString());
}

void ScreenAdapter::perform(const QString& name) {
  if (const auto there = controller_.lock()) {
    touch(name.toStdString(), [&] { there->performAction(name.toStdString()); });
  }
}

bool ScreenAdapter::isReachable(const std::string& name) const {
  const auto there = controller_.lock();
  return there && there->hasAppeared() && !there->isBeingDismissed() &&
         !there->presentedViewController() && screen_->reachable(name);
}

void ScreenAdapter::touch(const std::string& name, const Task& doing) {
  // Held meanwhile: the doing may take the screen away.
  const auto there = controller_.lock();
  if (there && isReachable(name)) {
    runLogged(doing);
  }
}

void ScreenAdapter::refreshShown() {
  for (const auto& [name, adapter] : outlets_) {
    adapter->refreshShown();
  }
}

void ScreenAdapter::refreshReachable() {
  for (const auto& [name, adapter] : outlets_) {
    adapter->refreshReachable();
  }
}

}  // namespace orlix::shell
