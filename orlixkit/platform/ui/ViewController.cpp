#include "orlixkit/platform/ui/ViewController.h"

#include <new>
#include <utility>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/MainQueue.h"
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

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->presentedViewController() : presented_;
}

std::shared_ptr<ViewController> ViewController::presentingViewController() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->presentingViewController() : presenting_.lock();
}

bool ViewController::isBeingDismissed() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->isBeingDismissed() : beingDismissed_;
}

void ViewController::present(const std::shared_ptr<ViewController>& controller, bool animated,
                             Task completion) {
  if (const std::shared_ptr<ViewController> container = parent.lock()) {
    container->present(controller, animated, std::move(completion));
    return;
  }
  if (presented_ && presented_->beingDismissed_) {
    // Without owning itself: a host that shuts down meanwhile never comes back to this.
    const auto goOn = [weak = weak_from_this(), controller, animated, completion] {
      if (const std::shared_ptr<ViewController> self = weak.lock()) {
        self->present(controller, animated, completion);
      }
    };
    afterDismissal_.push_back({goOn, true});
    return;
  }
  const std::string refusal = reasonNotToPresent(*controller);
  if (refusal.empty()) {
    begin(controller, animated, std::move(completion));
  } else {
    log("Attempt to present " + controller->identifier() + " on " + identifier_ + ", " + refusal);
  }
}

std::string ViewController::reasonNotToPresent(const ViewController& controller) const {
  if (presented_) {
    return "which presents " + presented_->identifier() + " already";
  }
  if (beingDismissed_) {
    return "which is on its way out";
  }
  bool shown = controller.presenting_.lock() != nullptr || !controller.parent.expired();
  for (auto below = weak_from_this().lock(); below; below = below->presenting_.lock()) {
    shown = shown || below.get() == &controller;
  }
  return shown ? "but it is shown already" : "";
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
  const auto maker = controller->transitioningDelegate.lock();
  if (maker && controller->modalPresentationStyle == ModalPresentationStyle::custom) {
    controller->presentationController_ =
        maker->presentationControllerFor(controller, shared_from_this(), shared_from_this());
  }
  const Size screen = Host::current().application().mainScreenSize();
  Rect frame{0, 0, screen.width, screen.height};
  if (controller->presentationController_) {
    controller->presentationController_->presentationTransitionWillBegin();
    frame = controller->presentationController_->frameOfPresentedViewInContainerView();
  }
  controller->view_->setFrame(frame);
  if (const auto child = controller->visibleChild()) {
    child->view_->setFrame({0, 0, frame.width, frame.height});
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

std::vector<std::shared_ptr<ViewController>> ViewController::presentedFromTheTop() const {
  std::vector<std::shared_ptr<ViewController>> stack;
  for (auto next = presented_; next; next = next->presented_) {
    stack.insert(stack.begin(), next);
  }
  return stack;
}

void ViewController::dismiss(bool animated, Task completion) {
  if (const std::shared_ptr<ViewController> container = parent.lock()) {
    container->dismiss(animated, std::move(completion));
    return;
  }
  if (!presented_) {
    if (completion) {
      completion();
    }
    return;
  }
  const std::shared_ptr<ViewController> self = shared_from_this();
  const std::shared_ptr<ViewController> leaving = presented_;
  if (completion) {
    afterDismissal_.push_back({std::move(completion), false});
  }
  try {
    if (!leaving->beingDismissed_) {
      beginDismissal();
    } else if (animated) {
      return;  // joins the one under way
    }
    // What the controllers did when they were told may have finished it.
    if (animated && presented_ == leaving && leaving->beingDismissed_) {
      Host::current().application().animate(leaving, Transition::dismissal,
                                            [self, leaving] { self->finishDismissal(leaving); });
      return;
    }
  } catch (const std::bad_alloc&) {
    if (!leaving->beingDismissed_) {
      throw;
    }
    // Begun, so it ends, if without its animation.
  }
  // Also overtakes an animated dismissal that is still running.
  finishDismissal(leaving);
}

void ViewController::beginDismissal() {
  // Marked first, so that nobody who is told below presents on what leaves, or dismisses it anew.
  std::vector<std::shared_ptr<ViewController>> leaving = presentedFromTheTop();
  std::erase_if(leaving, [](const auto& one) { return std::exchange(one->beingDismissed_, true); });
  for (auto one = leaving.rbegin(); one != leaving.rend(); ++one) {
    if (const std::shared_ptr<ViewController> presenter = (*one)->presenting_.lock()) {
      presenter->finishPresentation(*one);
    }
  }
  for (const auto& one : leaving) {
    if (one->beingDismissed_) {  // else somebody who was told has cut it short
      one->disappear();
    }
  }
  if (presented_ && presented_->beingDismissed_ && presented_->presentationController_) {
    presented_->presentationController_->dismissalTransitionWillBegin();
  }
}

void ViewController::finishDismissal(const std::shared_ptr<ViewController>& controller) {
  if (presented_ != controller || !controller->beingDismissed_) {
    return;
  }
  const std::vector<std::shared_ptr<ViewController>> gone = presentedFromTheTop();
  // All the memory it needs: a dismissal that has begun to change anything comes to its end.
  std::vector<Task> after;
  std::size_t most = 0;
  for (const auto& one : gone) {
    most += one->presenting_.lock()->afterDismissal_.size();
  }
  after.reserve(most);
  for (const auto& one : gone) {
    const std::shared_ptr<ViewController> presenter = one->presenting_.lock();
    for (AfterDismissal& next : std::exchange(presenter->afterDismissal_, {})) {
      // What waited to stand on a controller that is gone itself has no place any more.
      if (!next.presents || presenter.get() == this) {
        after.push_back(std::move(next.task));
      }
    }
    presenter->presented_.reset();
    one->presenting_.reset();
    one->presentationController_.reset();
    one->beingDismissed_ = false;
    one->appeared_ = false;
  }
  for (const auto& one : gone) {
    runLogged([&one] { Host::current().application().didDismiss(one); });
  }
  for (const Task& task : after) {
    runLogged(task);
  }
}

void ViewController::abandonPresented() {
  for (const auto& one : presentedFromTheTop()) {
    one->abandonPresented();
    one->presenting_.reset();
    one->presentationController_.reset();
  }
  presented_.reset();
  presentationCompletion_ = {};
  afterDismissal_.clear();
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
