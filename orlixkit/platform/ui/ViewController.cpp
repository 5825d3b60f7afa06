#include "orlixkit/platform/ui/ViewController.h"

#include <utility>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/ui/Containers.h"
#include "orlixkit/platform/ui/PresentationController.h"

namespace orlix {

ViewController::ViewController() : view_(std::make_shared<View>()) {}

ViewController::~ViewController() = default;

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

void ViewController::present(const std::shared_ptr<ViewController>& controller, bool animated,
                             Task completion) {
  if (presented_ && presented_->beingDismissed_) {
    dismissalCompletions_.push_back([self = shared_from_this(), controller, animated, completion] {
      self->present(controller, animated, completion);
    });
    return;
  }
  if (presented_) {
    log("Attempt to present " + controller->identifier() + " on " + identifier_ +
        ", which presents " + presented_->identifier() + " already");
    return;
  }
  begin(controller, animated, std::move(completion));
}

void ViewController::begin(const std::shared_ptr<ViewController>& controller, bool animated,
                           Task completion) {
  presented_ = controller;
  presentationCompletion_ = std::move(completion);
  controller->presenting_ = weak_from_this();
  controller->loadViewIfNeeded();
  if (const auto child = controller->visibleChild()) {
    child->loadViewIfNeeded();
  }
  if (controller->modalPresentationStyle == ModalPresentationStyle::custom) {
    if (const auto maker = controller->transitioningDelegate.lock()) {
      controller->presentationController_ =
          maker->presentationControllerFor(controller, shared_from_this(), shared_from_this());
      controller->presentationController_->presentationTransitionWillBegin();
    }
  }
  controller->viewWillAppear();
  if (const auto child = controller->visibleChild()) {
    child->viewWillAppear();
  }
  if (!animated) {
    finishPresentation(controller);
    return;
  }
  Host::current().application().animate(
      controller, Transition::presentation,
      [self = shared_from_this(), controller] { self->finishPresentation(controller); });
}

void ViewController::finishPresentation(const std::shared_ptr<ViewController>& controller) {
  // A dismissal that began meanwhile has finished the presentation itself.
  if (presented_ != controller || controller->appeared_) {
    return;
  }
  controller->appear();
  Host::current().application().didPresent(controller);
  if (const Task completion = std::exchange(presentationCompletion_, {})) {
    completion();
  }
}

void ViewController::appear() {
  appeared_ = true;
  viewDidAppear();
  if (const auto child = visibleChild()) {
    child->appeared_ = true;
    child->viewDidAppear();
  }
}

void ViewController::disappear() {
  if (const auto child = visibleChild()) {
    child->viewWillDisappear();
    child->appeared_ = false;
  }
  viewWillDisappear();
}

void ViewController::dismiss(bool animated, Task completion) {
  if (!presented_) {
    if (completion) {
      completion();
    }
    return;
  }
  const std::shared_ptr<ViewController> leaving = presented_;
  if (completion) {
    dismissalCompletions_.push_back(std::move(completion));
  }
  if (leaving->beingDismissed_) {
    // A cut overtakes an animated dismissal that is still running.
    if (!animated) {
      finishDismissal(leaving);
    }
    return;
  }
  finishPresentation(leaving);
  leaving->beingDismissed_ = true;
  leaving->disappear();
  if (leaving->presentationController_) {
    leaving->presentationController_->dismissalTransitionWillBegin();
  }
  if (!animated) {
    finishDismissal(leaving);
    return;
  }
  Host::current().application().animate(
      leaving, Transition::dismissal,
      [self = shared_from_this(), leaving] { self->finishDismissal(leaving); });
}

void ViewController::finishDismissal(const std::shared_ptr<ViewController>& controller) {
  if (presented_ != controller) {
    return;
  }
  // What stands on the leaving controller goes with it, from the top down, without further notice.
  if (controller->presented_) {
    controller->dismiss(false);
  }
  presented_.reset();
  controller->presenting_.reset();
  controller->presentationController_.reset();
  controller->beingDismissed_ = false;
  controller->appeared_ = false;
  Host::current().application().didDismiss(controller);
  for (const Task& completion : std::exchange(dismissalCompletions_, {})) {
    completion();
  }
}

void ViewController::performSegue(const std::string& name) {
  const std::shared_ptr<ViewController> destination =
      Host::current().application().storyboard().make(name);
  if (!destination) {
    return;
  }
  prepareForSegue(name, destination);
  present(destination, true);
}

void ViewController::prepareForSegue(const std::string&, const std::shared_ptr<ViewController>&) {}

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
