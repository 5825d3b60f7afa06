#include "orlixkit/checkout/AlertWindow.h"

#include "orlixkit/platform/Host.h"

namespace orlix {

namespace {

constexpr int kFirstVersionWithScenes = 13;

bool isInForeground(const Scene& scene) {
  return scene.isWindowScene && (scene.state == SceneState::foregroundActive ||
                                 scene.state == SceneState::foregroundInactive);
}

/// The first key window of the foreground scenes, else the first window that can be seen.
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

}  // namespace

void AlertWindow::show(const std::shared_ptr<AlertController>& alert, bool animated) {
  MainQueue& mainQueue = *Host::current().ports().mainQueue;
  if (!mainQueue.isCurrent()) {
    mainQueue.async([alert, animated] { show(alert, animated); });
    return;
  }
  const std::shared_ptr<Window> window = ox_activeApplicationWindow();
  const auto top = ox_topViewControllerFrom(window ? window->rootViewController : nullptr);
  if (!top) {
    log("OrlixKit: Unable to present alert because no active application window was found.");
    return;
  }
  top->present(alert, animated);
}

std::shared_ptr<Window> AlertWindow::ox_activeApplicationWindow() {
  const Application& application = Host::current().application();
  if (application.platformVersion >= kFirstVersionWithScenes) {
    if (std::shared_ptr<Window> window = windowOfScenes(application)) {
      return window;
    }
  }
  return application.keyWindow ? application.keyWindow : application.delegateWindow;
}

std::shared_ptr<ViewController> AlertWindow::ox_topViewControllerFrom(
    const std::shared_ptr<ViewController>& controller) {
  if (!controller) {
    return nullptr;
  }
  const std::shared_ptr<ViewController> presented = controller->presentedViewController();
  if (presented && !presented->isBeingDismissed()) {
    return ox_topViewControllerFrom(presented);
  }
  // A navigation container's visible controller, a tab container's selected one.
  if (const std::shared_ptr<ViewController> child = controller->visibleChild()) {
    return ox_topViewControllerFrom(child);
  }
  return controller;
}

}  // namespace orlix
