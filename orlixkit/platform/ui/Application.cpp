#include "orlixkit/platform/ui/Application.h"

#include "orlixkit/platform/Host.h"

namespace orlix {

Application::Application() = default;
Application::~Application() = default;

void Application::showMainWindow(const std::shared_ptr<ViewController>& root) {
  if (keyWindow) {
    keyWindow->key = false;
  }
  auto window = std::make_shared<Window>();
  window->rootViewController = root;
  window->key = true;
  keyWindow = window;
  Scene scene;
  scene.windows.push_back(window);
  connectedScenes.push_back(std::move(scene));
  root->loadViewIfNeeded();
  root->viewWillAppear();
  root->appear();
}

void Application::didPresent(const std::shared_ptr<ViewController>& controller) {
  if (observer_ != nullptr) {
    observer_->didPresent(controller);
  }
}

void Application::didDismiss(const std::shared_ptr<ViewController>& controller) {
  if (observer_ != nullptr) {
    observer_->didDismiss(controller);
  }
}

void Application::progressChanged() {
  if (observer_ != nullptr) {
    observer_->progressChanged(progressIndicator_);
  }
}

void Application::animate(const std::shared_ptr<ViewController>& controller, Transition transition,
                          Task done) {
  if (observer_ == nullptr || !observer_->animate(controller, transition, done)) {
    Host::current().ports().mainQueue->async(std::move(done));
  }
}

void Application::clear() {
  std::vector<std::shared_ptr<Window>> windows{keyWindow, delegateWindow};
  for (const Scene& scene : connectedScenes) {
    windows.insert(windows.end(), scene.windows.begin(), scene.windows.end());
  }
  for (const auto& window : windows) {
    if (window && window->rootViewController) {
      window->rootViewController->abandonPresented();
    }
  }
  connectedScenes.clear();
  keyWindow.reset();
  delegateWindow.reset();
  observer_ = nullptr;
}

}  // namespace orlix
