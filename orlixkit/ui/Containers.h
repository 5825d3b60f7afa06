// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <vector>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Holds one controller at the bottom and shows the one on top.
class NavigationController : public ViewController {
 public:
  /// The controllers from the bottom up; made with `make` so that they know their container.
  static std::shared_ptr<NavigationController> make(const std::shared_ptr<ViewController>& root);
  void setRoot(const std::shared_ptr<ViewController>& root);
  std::shared_ptr<ViewController> topViewController() const { return root_; }
  std::shared_ptr<ViewController> visibleChild() override { return root_; }

 private:
  std::shared_ptr<ViewController> root_;
};

class TabBar : public View {
 public:
  std::string kind() const override { return "tabbar"; }
};

class TabBarController : public ViewController {
 public:
  void setChildren(std::vector<std::shared_ptr<ViewController>> children, std::size_t selected);
  std::shared_ptr<ViewController> selectedViewController() const;
  std::shared_ptr<ViewController> visibleChild() override { return selectedViewController(); }
  /// None when the controller has no bar.
  std::shared_ptr<TabBar> tabBar;

 private:
  std::vector<std::shared_ptr<ViewController>> children_;
  std::size_t selected_ = 0;
};

}  // namespace orlix
