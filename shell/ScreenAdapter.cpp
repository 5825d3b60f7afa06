// SPDX-License-Identifier: Apache-2.0

#include "shell/ScreenAdapter.h"

#include <QVariant>

#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ui/Touch.h"

namespace orlix::shell {

ScreenAdapter::ScreenAdapter(const std::shared_ptr<ViewController>& controller)
    : QQmlPropertyMap(this, nullptr),
      identifier_(QString::fromStdString(controller->identifier())),
      controller_(controller) {
  add("view", controller->view());
  for (const std::string& name : controller->outletNames()) {
    add(name, controller->outletNamed(name));
  }
  freeze();
}

ScreenAdapter::~ScreenAdapter() { detach(); }

void ScreenAdapter::add(const std::string& name, const std::shared_ptr<View>& view) {
  auto made = adapterFor(name, view, controller_);
  connect(made.get(), &OutletAdapter::changed, this, &ScreenAdapter::refreshShown);
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
  // Keep a reference: the action may dismiss the screen.
  const auto there = controller_.lock();
  const std::string action = name.toStdString();
  if (there && touchRefusal(Host::current().application(), *there, action) == TouchRefusal::none) {
    runLogged([&] { there->performAction(action); });
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
