// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/ActiveWindow.h"

#include <algorithm>

#include "orlixkit/ui/Application.h"

namespace orlix {

namespace {

constexpr int kFirstVersionWithScenes = 13;

bool isInForeground(const Scene& scene) {
  return scene.isWindowScene && (scene.state == SceneState::foregroundActive ||
                                 scene.state == SceneState::foregroundInactive);
}

std::shared_ptr<Window> windowOfScenes(const Application& application) {
  std::shared_ptr<Window> visible;
  for (const Scene& scene : application.connectedScenes) {
    if (!isInForeground(scene)) {
      continue;
    }
    for (const auto& window : scene.windows) {
      if (window->key) {
        return window;
      }
      if (!visible && !window->hidden && window->alpha > 0 && window->normalLevel) {
        visible = window;
      }
    }
  }
  return visible;
}

/// The controller that presents this one, else its container.
std::shared_ptr<ViewController> whatHolds(const ViewController& controller) {
  const std::shared_ptr<ViewController> presenter = controller.presentingViewController();
  return presenter ? presenter : controller.parent.lock();
}

}  // namespace

std::shared_ptr<Window> activeWindow(const Application& application) {
  if (application.platformVersion >= kFirstVersionWithScenes) {
    if (std::shared_ptr<Window> window = windowOfScenes(application)) {
      return window;
    }
  }
  return application.keyWindow ? application.keyWindow : application.delegateWindow;
}

std::shared_ptr<ViewController> topViewControllerFrom(
    const std::shared_ptr<ViewController>& controller) {
  if (!controller) {
    return nullptr;
  }
  const std::shared_ptr<ViewController> presented = controller->presentedViewController();
  if (presented && !presented->isBeingDismissed()) {
    return topViewControllerFrom(presented);
  }
  // A navigation container's visible controller, a tab container's selected one.
  if (const std::shared_ptr<ViewController> child = controller->visibleChild()) {
    return topViewControllerFrom(child);
  }
  return controller;
}

bool isOnScreen(const Application& application, const std::shared_ptr<ViewController>& controller) {
  std::shared_ptr<ViewController> root = controller;
  for (auto below = root; below; below = whatHolds(*below)) {
    root = below;
  }
  const auto windows = application.windows();
  return std::any_of(windows.begin(), windows.end(), [&root](const auto& window) {
    return root && window->rootViewController() == root;
  });
}

}  // namespace orlix
