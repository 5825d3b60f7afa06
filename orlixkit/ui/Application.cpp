// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/Application.h"

#include <algorithm>
#include <new>
#include <utility>

#include "orlixkit/ui/ActiveWindow.h"
#include "orlixkit/ui/AlertController.h"

namespace orlix {

Window::Window(Application& application) : application_(application.weak_from_this()) {}

void Window::setRootViewController(const std::shared_ptr<ViewController>& root) {
  root_ = root;
  if (root) {
    root->application_ = application_;
  }
}

Application::Application(UiServices services)
    : services_(std::move(services)), progressIndicator_(*this), storyboard_(*this) {}
Application::~Application() = default;

void Application::showMainWindow(const std::shared_ptr<ViewController>& root) {
  if (keyWindow) {
    keyWindow->key = false;
  }
  auto window = std::make_shared<Window>(*this);
  window->setRootViewController(root);
  window->key = true;
  keyWindow = window;
  Scene scene;
  scene.windows.push_back(window);
  connectedScenes.push_back(std::move(scene));
  root->loadViewIfNeeded();
  root->viewWillAppear();
  root->appear();
}

std::vector<std::shared_ptr<Window>> Application::windows() const {
  std::vector<std::shared_ptr<Window>> found;
  const auto add = [&found](const std::shared_ptr<Window>& window) {
    if (window && std::find(found.begin(), found.end(), window) == found.end()) {
      found.push_back(window);
    }
  };
  for (const Scene& scene : connectedScenes) {
    std::for_each(scene.windows.begin(), scene.windows.end(), add);
  }
  add(keyWindow);
  add(delegateWindow);
  return found;
}

// Each of these holds the application meanwhile: the observer may uninstall the host.

void Application::didPresent(const std::shared_ptr<ViewController>& controller) {
  const std::shared_ptr<Application> self = shared_from_this();
  if (observer_ != nullptr) {
    callOut("UiObserver::didPresent", [&] { observer_->didPresent(controller); });
  }
}

void Application::didDismiss(const std::shared_ptr<ViewController>& controller) {
  const std::shared_ptr<Application> self = shared_from_this();
  if (observer_ != nullptr) {
    callOut("UiObserver::didDismiss", [&] { observer_->didDismiss(controller); });
  }
}

void Application::progressChanged() {
  const std::shared_ptr<Application> self = shared_from_this();
  if (observer_ != nullptr) {
    callOut("UiObserver::progressChanged", [&] { observer_->progressChanged(progressIndicator_); });
  }
}

void Application::animate(const std::shared_ptr<ViewController>& controller, Transition transition,
                          const Task& done) {
  const std::shared_ptr<Application> self = shared_from_this();
  bool played = false;
  if (observer_ != nullptr) {
    callOut("UiObserver::animate",
            [&] { played = observer_->animate(controller, transition, done); });
  }
  if (!played && !cleared_) {
    mainQueue().async(done);
  }
}

void Application::showAlert(const std::shared_ptr<ViewController>& alert, bool animated,
                            const Task& completion) {
  alert->application_ = weak_from_this();
  const auto own = std::dynamic_pointer_cast<AlertController>(alert);
  std::shared_ptr<ViewController> top = own && own->place ? own->place() : nullptr;
  if (!top) {
    const std::shared_ptr<Window> window = activeWindow(*this);
    top = topViewControllerFrom(window ? window->rootViewController() : nullptr);
  }
  if (top) {
    top->present(alert, animated, completion);
    return;
  }
  log("OrlixKit: Unable to present alert because no active application window was found.");
  alert->loseLater();
}

void Application::log(std::string_view line) {
  try {
    services_.log->write(line);
  } catch (const std::bad_alloc&) {
    return;  // a failure to log must not affect the caller
  }
}

void Application::clear() {
  cleared_ = true;
  observer_ = nullptr;
  progressIndicator_.abandon();
  for (const auto& window : windows()) {
    if (const auto root = window->rootViewController()) {
      root->abandonPresented();
    }
  }
  connectedScenes.clear();
  keyWindow.reset();
  delegateWindow.reset();
}

}  // namespace orlix
