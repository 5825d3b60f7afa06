// How controllers present one another: the part of ViewController that moves.
//
// Every call of a screen, of the observer or of a completion may do anything, take away what is
// being presented included. So each step holds what it needs, and asks its own state again after
// every such call.

#include <algorithm>
#include <new>
#include <utility>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/ui/ActiveWindow.h"
#include "orlixkit/platform/ui/CallOut.h"
#include "orlixkit/platform/ui/HeldApplication.h"
#include "orlixkit/platform/ui/PresentationController.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

namespace {

/// Not once the host is gone: nothing is called back then.
void runUnlessUninstalled(const Task& task) {
  if (task && Host::isInstalled()) {
    callOut("a completion", task);
  }
}

}  // namespace

bool ViewController::Showing::is(PresentationState state) const {
  return controller->number_ == number && controller->state_ == state;
}

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->presentedViewController() : presented_;
}

std::shared_ptr<ViewController> ViewController::presentingViewController() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->presentingViewController() : presenting_.lock();
}

PresentationState ViewController::presentationState() const {
  const std::shared_ptr<ViewController> container = parent.lock();
  return container ? container->presentationState() : state_;
}

void ViewController::present(const std::shared_ptr<ViewController>& controller, bool animated,
                             Task completion) {
  if (const std::shared_ptr<ViewController> container = parent.lock()) {
    container->present(controller, animated, std::move(completion));
    return;
  }
  if (!controller->mayBePresented()) {
    return;
  }
  const std::string refusal = reasonNotToPresent(*controller);
  if (!refusal.empty()) {
    log("Attempt to present " + controller->identifier() + " on " + identifier_ + ", " + refusal);
    return;
  }
  const bool leaving = state_ == PresentationState::dismissing;
  if (!presented_ && !leaving) {
    begin(controller, animated, std::move(completion));
  } else if (leaving || presented_->isAlert() ||
             presented_->state_ == PresentationState::dismissing) {
    waiting_.push_back({controller, animated, std::move(completion)});
    controller->state_ = PresentationState::waiting;
    controller->waitsOn_ = weak_from_this();
  } else {
    presented_->present(controller, animated, std::move(completion));  // an alert, over a screen
  }
}

std::string ViewController::reasonNotToPresent(const ViewController& controller) const {
  if (!controller.isAlert()) {
    if (presented_ && !presented_->isAlert() &&
        presented_->state_ != PresentationState::dismissing) {
      return "which presents " + presented_->identifier() + " already";
    }
    if (state_ == PresentationState::dismissing) {
      return "which is on its way out";
    }
  }
  bool shown = controller.state_ != PresentationState::idle || !controller.parent.expired();
  for (auto below = weak_from_this().lock(); below; below = below->presenting_.lock()) {
    shown = shown || below.get() == &controller;
  }
  return shown ? "but it is shown already" : "";
}

void ViewController::begin(const std::shared_ptr<ViewController>& controller, bool animated,
                           Task completion) {
  const std::shared_ptr<ViewController> self = shared_from_this();
  presented_ = controller;
  controller->presenting_ = self;
  controller->state_ = PresentationState::presenting;
  controller->whenPresented_ = std::move(completion);
  const Showing showing{controller, ++controller->number_};
  try {
    layOut(controller);
    if (!controller->isAlert()) {
      heldApplication()->progressIndicator().dismissFor(*self);  // covered from now on
    }
    if (animated && showing.is(PresentationState::presenting)) {
      heldApplication()->animate(controller, Transition::presentation, [self, showing] {
        if (showing.is(PresentationState::presenting)) {
          showing.controller->arrive();
        }
      });
      return;
    }
  } catch (...) {
    if (showing.is(PresentationState::presenting)) {
      presented_.reset();
      controller->unlink();
    }
    throw;
  }
  if (showing.is(PresentationState::presenting)) {
    controller->arrive();
  }
}

void ViewController::layOut(const std::shared_ptr<ViewController>& controller) {
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
  if (const auto presentation = controller->presentationController_) {
    presentation->presentationTransitionWillBegin();
    frame = presentation->frameOfPresentedViewInContainerView();
  }
  controller->view_->setFrame(frame);
  const auto child = controller->visibleChild();
  if (child) {
    child->view_->setFrame({0, 0, frame.width, frame.height});
  }
  controller->viewWillAppear();
  if (child) {
    child->viewWillAppear();
  }
}

ViewController::Showing ViewController::thisShowing() { return {shared_from_this(), number_}; }

/// Also when it is marked as leaving: whoever goes has come before.
void ViewController::arrive() {
  const Showing self = thisShowing();
  const Task completion = std::exchange(whenPresented_, {});
  if (state_ == PresentationState::presenting) {
    state_ = PresentationState::presented;
  }
  appear();
  const bool there =
      self.is(PresentationState::presented) || self.is(PresentationState::dismissing);
  if (there && Host::isInstalled()) {
    heldApplication()->didPresent(self.controller);
  }
  runUnlessUninstalled(completion);
}

void ViewController::appear() {
  appeared_ = true;
  callOut("viewDidAppear", [this] { viewDidAppear(); });
  const auto child = visibleChild();
  if (child && appeared_) {
    child->appeared_ = true;
    callOut("viewDidAppear", [&child] { child->viewDidAppear(); });
  }
}

void ViewController::disappear() {
  if (!std::exchange(appeared_, false)) {
    return;
  }
  const std::shared_ptr<ViewController> self = shared_from_this();
  const std::shared_ptr<ViewController> child = visibleChild();
  for (const auto& one : {child, self}) {
    if (one) {
      one->appeared_ = false;
      callOut("viewWillDisappear", [&one] { one->viewWillDisappear(); });
    }
    if (one && Host::isInstalled()) {
      Host::current().application().progressIndicator().dismissFor(*one);
    }
  }
}

std::vector<ViewController::Showing> ViewController::stackFromTheTop() {
  std::vector<Showing> stack;
  for (auto next = shared_from_this(); next; next = next->presented_) {
    stack.insert(stack.begin(), next->thisShowing());
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
  const Showing leaving = presented_->thisShowing();
  // Before anything has changed, so that a dismissal is begun whole or, for want of memory, not.
  std::vector<Showing> stack = leaving.controller->stackFromTheTop();
  if (completion) {
    leaving.controller->whenGone_.push_back(std::move(completion));
  }
  if (!leaving.is(PresentationState::dismissing)) {
    leaving.controller->beginDismissal(std::move(stack));
  } else if (animated) {
    return;  // joins the one under way
  }
  if (animated && leaving.is(PresentationState::dismissing)) {
    try {
      heldApplication()->animate(leaving.controller, Transition::dismissal, [self, leaving] {
        leaving.controller->endDismissal(leaving.number);
      });
      return;
    } catch (const std::bad_alloc&) {
      log("OrlixKit: No memory for an animation.");  // begun, so it ends, if without it
    }
  }
  // Also overtakes an animated dismissal that is still running.
  leaving.controller->endDismissal(leaving.number);
}

void ViewController::beginDismissal(std::vector<Showing> stack) {
  // Marked first, so that whoever is told below neither presents on what leaves nor dismisses it
  // again.
  std::erase_if(stack, [](const Showing& one) {
    return std::exchange(one.controller->state_, PresentationState::dismissing) ==
           PresentationState::dismissing;
  });
  for (auto one = stack.rbegin(); one != stack.rend(); ++one) {
    if (one->is(PresentationState::dismissing) && !one->controller->appeared_) {
      one->controller->arrive();
    }
  }
  for (const Showing& one : stack) {
    if (one.is(PresentationState::dismissing)) {  // else whoever was told has cut it short
      one.controller->disappear();
    }
  }
  const auto presentation = presentationController_;
  if (state_ == PresentationState::dismissing && presentation) {
    callOut("dismissalTransitionWillBegin",
            [&presentation] { presentation->dismissalTransitionWillBegin(); });
  }
}

void ViewController::endDismissal(unsigned number) {
  if (number_ != number || state_ != PresentationState::dismissing) {
    return;
  }
  // All the memory it needs: a dismissal that has begun to change anything comes to its end.
  const std::vector<Showing> stack = stackFromTheTop();
  std::vector<Gone> all;
  all.reserve(stack.size());
  const std::shared_ptr<ViewController> presenter = presenting_.lock();
  if (presenter) {
    presenter->presented_.reset();
  }
  for (const Showing& one : stack) {
    all.push_back(one.controller->unlink());
    one.controller->presented_.reset();
  }
  finish(all);
  if (presenter) {
    presentWaiting(std::exchange(presenter->waiting_, {}), presenter);
  }
}

ViewController::Gone ViewController::unlink() {
  Gone gone{shared_from_this(), std::exchange(whenGone_, {}), std::exchange(waiting_, {})};
  presenting_.reset();
  presentationController_.reset();
  whenPresented_ = {};
  state_ = PresentationState::idle;
  return gone;
}

/// Everyone is told that all of these have gone, from the top down; then what waited for that runs.
void ViewController::finish(const std::vector<Gone>& all) {
  for (const Gone& one : all) {
    one.controller->disappear();
    for (const auto& controller : {one.controller->visibleChild(), one.controller}) {
      if (controller && Host::isInstalled()) {
        heldApplication()->progressIndicator().cutFor(*controller);
      }
    }
    if (Host::isInstalled()) {
      heldApplication()->didDismiss(one.controller);
    }
  }
  for (const Gone& one : all) {
    runUnlessUninstalled([&one] { one.controller->hasGone(); });
    std::for_each(one.completions.begin(), one.completions.end(), runUnlessUninstalled);
  }
  for (const Gone& one : all) {
    presentWaiting(one.waiting, nullptr);
  }
}

void ViewController::presentWaiting(const std::vector<Waiting>& waiting,
                                    const std::shared_ptr<ViewController>& presenter) {
  for (const Waiting& next : waiting) {
    if (next.controller->state_ != PresentationState::waiting || !Host::isInstalled()) {
      continue;  // withdrawn meanwhile
    }
    next.controller->state_ = PresentationState::idle;
    bool done = false;
    const auto present = [&] {
      if (presenter && presenter->state_ == PresentationState::dismissing &&
          !next.controller->isAlert()) {
        // Nothing to present on any more, and nothing to complain of: it waited in good order.
      } else if (presenter) {
        presenter->present(next.controller, next.animated, next.completion);
      } else if (next.controller->isAlert()) {
        heldApplication()->showAlert(next.controller, next.animated, next.completion);
      } else {
        log("Attempt to present " + next.controller->identifier() +
            ", but what it waited to be presented on has gone");
      }
      done = true;
    };
    callOut("a presentation that has waited", present);
    if (!done) {
      next.controller->loseLater();
    }
  }
}

void ViewController::loseLater() {
  const std::shared_ptr<ViewController> self = shared_from_this();
  try {
    Host::current().ports().mainQueue->async([self] { self->hasGone(); });
  } catch (const std::bad_alloc&) {
    callOut("a completion", [&self] { self->hasGone(); });  // rather early than never
  }
}

void ViewController::leaveAlone() {
  const std::shared_ptr<ViewController> presenter = presenting_.lock();
  if (state_ == PresentationState::waiting) {
    state_ = PresentationState::idle;
    if (const auto place = waitsOn_.lock()) {
      std::erase_if(place->waiting_,
                    [this](const Waiting& one) { return one.controller.get() == this; });
    }
  } else if (presenter && presented_ && state_ != PresentationState::dismissing) {
    stepOutOfTheStack();
  } else if (presenter) {
    presenter->dismiss(false);
  }
}

/// What is presented on this one is presented on the one below from now on.
void ViewController::stepOutOfTheStack() {
  if (!appeared_) {
    arrive();
  }
  const std::shared_ptr<ViewController> presenter = presenting_.lock();
  std::vector<Gone> gone;
  gone.reserve(1);
  if (!presenter || !presented_ || state_ == PresentationState::dismissing) {
    leaveAlone();  // what it was told above has changed the stack
    return;
  }
  presenter->presented_ = presented_;
  presented_->presenting_ = presenter;
  presented_.reset();
  gone.push_back(unlink());
  finish(gone);
}

void ViewController::leaveWithoutPresenter() {
  if (presenting_.expired() && state_ != PresentationState::idle &&
      state_ != PresentationState::waiting) {
    const Showing self = thisShowing();
    beginDismissal(stackFromTheTop());
    endDismissal(self.number);
  }
}

void ViewController::abandonPresented() {
  const auto forget = [](ViewController& one) {
    for (const Waiting& next : one.waiting_) {
      next.controller->state_ = PresentationState::idle;
    }
    one.waiting_.clear();
    one.presented_.reset();
  };
  if (presented_) {
    for (const Showing& one : presented_->stackFromTheTop()) {
      one.controller->unlink();
      forget(*one.controller);
    }
  }
  forget(*this);
}

/// This one is no more, its window gone perhaps; what it presents may be held by others.
void ViewController::releasePresented() noexcept {
  try {
    if (!Host::isInstalled()) {
      return;
    }
    MainQueue& mainQueue = *Host::current().ports().mainQueue;
    if (presented_) {
      mainQueue.async([left = std::move(presented_)] { left->leaveWithoutPresenter(); });
    }
    if (!waiting_.empty()) {
      mainQueue.async([left = std::move(waiting_)] { presentWaiting(left, nullptr); });
    }
    const ProgressIndicator& indicator = Host::current().application().progressIndicator();
    if (indicator.owned_ && indicator.owner_.expired()) {
      mainQueue.async([] { Host::current().application().progressIndicator().dismissOrphan(); });
    }
  } catch (const std::bad_alloc&) {
    return;  // what is left is only not told of it
  }
}

}  // namespace orlix
