// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/Containers.h"

namespace orlix {

std::shared_ptr<NavigationController> NavigationController::make(
    const std::shared_ptr<ViewController>& root) {
  auto made = std::make_shared<NavigationController>();
  made->setRoot(root);
  return made;
}

void NavigationController::setRoot(const std::shared_ptr<ViewController>& root) {
  root_ = root;
  root->parent = weak_from_this();
}

void TabBarController::setChildren(std::vector<std::shared_ptr<ViewController>> children,
                                   std::size_t selected) {
  children_ = std::move(children);
  selected_ = selected;
  for (const auto& child : children_) {
    child->parent = weak_from_this();
  }
}

std::shared_ptr<ViewController> TabBarController::selectedViewController() const {
  return selected_ < children_.size() ? children_[selected_] : nullptr;
}

}  // namespace orlix
