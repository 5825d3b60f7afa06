// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/ViewController.h"

#include <utility>

#include "orlixkit/ui/Application.h"
#include "orlixkit/ui/Containers.h"

namespace orlix {

ViewController::ViewController() : view_(std::make_shared<View>()) {}

ViewController::~ViewController() { releasePresented(); }

void ViewController::loadViewIfNeeded() {
  if (!loaded_) {
    loaded_ = true;
    viewDidLoad();
  }
}

void ViewController::registerOutlet(const std::string& name, const std::shared_ptr<View>& view) {
  outlets_[name] = view;
  outletNames_.push_back(name);
}

std::shared_ptr<View> ViewController::outletNamed(const std::string& name) const {
  const auto found = outlets_.find(name);
  return found == outlets_.end() ? nullptr : found->second;
}

void ViewController::action(const std::string& name, Task operation) {
  actions_[name] = std::move(operation);
  actionNames_.push_back(name);
}

void ViewController::performAction(const std::string& name) {
  const auto found = actions_.find(name);
  if (found == actions_.end()) {
    throw std::out_of_range("no action " + name + " on the screen " + identifier_);
  }
  // The action may take this screen away; it stays whole until the action has returned.
  const std::shared_ptr<ViewController> self = shared_from_this();
  found->second();
}

void ViewController::performSegue(const std::string& name) {
  const std::shared_ptr<ViewController> presented = presentedViewController();
  if (presented && presented->identifier() == name && !presented->isBeingDismissed()) {
    return;  // a second touch, or a second answer, while the first one is being followed
  }
  const std::shared_ptr<Application> application = this->application();
  const std::shared_ptr<ViewController> destination =
      application ? application->storyboard().make(name) : nullptr;
  if (!destination) {
    return;
  }
  prepareForSegue(name, destination);
  present(destination, true);
}

void ViewController::prepareForSegue(const std::string&, const std::shared_ptr<ViewController>&) {}

std::shared_ptr<Application> ViewController::application() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->application() : application_.lock();
}

std::shared_ptr<NavigationController> ViewController::navigationController() const {
  return std::dynamic_pointer_cast<NavigationController>(parent.lock());
}

std::shared_ptr<TabBarController> ViewController::tabBarController() const {
  const std::shared_ptr<ViewController> above = parent.lock();
  if (const auto tabs = std::dynamic_pointer_cast<TabBarController>(above)) {
    return tabs;
  }
  return above ? above->tabBarController() : nullptr;
}

}  // namespace orlix
