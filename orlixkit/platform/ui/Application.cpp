#include "orlixkit/platform/ui/Application.h"

#include "orlixkit/platform/Host.h"

namespace orlix {

Application::Application() = default;
Application::~Application() = default;

void Application::showMainWindow(const std::shared_ptr<ViewController>& root) {
  auto window = std::make_shared<Window>();
  window->rootViewController = root;
  window->key = true;
  keyWindow = window;
  Scene scene;
  scene.windows.push_back(window);
  connectedScenes.push_back(std::move(scene));
  root->loadViewIfNeeded();
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
  connectedScenes.clear();
  keyWindow.reset();
  delegateWindow.reset();
  observer_ = nullptr;
}

}  // namespace orlix
