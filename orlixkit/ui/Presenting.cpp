// SPDX-License-Identifier: Apache-2.0

// How controllers present one another: the part of ViewController that moves.

#include <new>
#include <utility>

#include "orlixkit/ui/Application.h"
#include "orlixkit/ui/ModalPresentation.h"

namespace orlix {

/// Nothing runs without an application: its host is gone.
template <class Code>
void ViewController::callOut(const char* where, const Code& code) noexcept {
  if (const std::shared_ptr<Application> there = application()) {
    there->callOut(where, code);
  }
}

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
  if (const auto container = parent.lock()) {
    return container->presentedViewController();
  }
  return presents_ ? presents_->controller : nullptr;
}

std::shared_ptr<ViewController> ViewController::presentingViewController() const {
  if (const auto container = parent.lock()) {
    return container->presentingViewController();
  }
  const std::shared_ptr<ModalPresentation> own = presentation_.lock();
  return own && own->state != PresentationState::waiting ? own->presenter.lock() : nullptr;
}

PresentationState ViewController::presentationState() const {
  if (const auto container = parent.lock()) {
    return container->presentationState();
  }
  const std::shared_ptr<ModalPresentation> own = presentation_.lock();
  return own ? own->state : PresentationState::idle;
}

std::shared_ptr<PresentationController> ViewController::presentationController() const {
  const std::shared_ptr<ModalPresentation> own = presentation_.lock();
  return own ? own->presentationController : nullptr;
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
  const std::shared_ptr<Application> there =
      application() ? application() : controller->application();
  if (!there) {
    throw std::logic_error("ViewController::present: put one of the two into a window first");
  }
  const std::string refusal = reasonNotToPresent(*controller);
  if (!refusal.empty()) {
    there->log("Attempt to present " + controller->identifier() + " on " + identifier_ + ", " +
               refusal);
    return;
  }
  const bool waits =
      isBeingDismissed() || (presents_ && (presents_->controller->isAlert() ||
                                           presents_->state == PresentationState::dismissing));
  if (presents_ && !waits) {
    presents_->controller->present(controller, animated, std::move(completion));  // an alert
    return;
  }
  application_ = there;
  controller->application_ = there;
  const auto next = std::make_shared<ModalPresentation>();
  next->controller = controller;
  next->presenter = weak_from_this();
  next->animated = animated;
  next->whenPresented = std::move(completion);
  if (waits) {
    next->wait();
  } else {
    next->begin();
  }
}

std::string ViewController::reasonNotToPresent(const ViewController& controller) const {
  if (!controller.isAlert()) {
    if (presents_ && !presents_->controller->isAlert() &&
        presents_->state != PresentationState::dismissing) {
      return "which presents " + presents_->controller->identifier() + " already";
    }
    if (isBeingDismissed()) {
      return "which is on its way out";
    }
  }
  bool shown =
      controller.presentationState() != PresentationState::idle || !controller.parent.expired();
  for (auto below = weak_from_this().lock(); below; below = below->presentingViewController()) {
    shown = shown || below.get() == &controller;
  }
  return shown ? "but it is shown already" : "";
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
    if (const auto there = one ? one->application() : nullptr; there && !there->isCleared()) {
      there->progressIndicator().dismissFor(*one);
    }
  }
}

void ViewController::dismiss(bool animated, Task completion) {
  if (const std::shared_ptr<ViewController> container = parent.lock()) {
    container->dismiss(animated, std::move(completion));
    return;
  }
  if (!presents_) {
    if (completion) {
      completion();
    }
    return;
  }
  const std::shared_ptr<ViewController> self = shared_from_this();
  const std::shared_ptr<ModalPresentation> leaving = presents_;
  // Before anything has changed, so that a dismissal is begun whole or, for want of memory, not.
  ModalPresentation::Stack stack = leaving->stackFromTheTop();
  if (completion) {
    leaving->whenGone.push_back(std::move(completion));
  }
  if (leaving->state != PresentationState::dismissing) {
    leaving->beginDismissal(std::move(stack));
  } else if (animated) {
    return;  // joins the one under way
  }
  const std::shared_ptr<Application> there = application();
  if (there && animated && leaving->state == PresentationState::dismissing) {
    try {
      there->animate(leaving->controller, Transition::dismissal,
                     [self, leaving] { leaving->endDismissal(); });
      return;
    } catch (const std::bad_alloc&) {
      there->log("OrlixKit: No memory for an animation.");  // begun, so it ends, if without it
    }
  }
  // Also overtakes an animated dismissal that is still running.
  leaving->endDismissal();
}

void ViewController::loseLater() {
  const std::shared_ptr<ViewController> self = shared_from_this();
  const std::shared_ptr<Application> there = application();
  try {
    if (there) {
      there->mainQueue().async([self] { self->hasGone(); });
    }
  } catch (const std::bad_alloc&) {
    callOut("a completion", [&self] { self->hasGone(); });  // rather early than never
  }
}

void ViewController::leaveAlone() {
  const std::shared_ptr<ModalPresentation> own = presentation_.lock();
  const std::shared_ptr<ViewController> presenter = presentingViewController();
  if (own && own->state == PresentationState::waiting) {
    own->stopWaiting();
  } else if (presenter && presents_ && own->state != PresentationState::dismissing) {
    own->stepOut();
  } else if (presenter) {
    presenter->dismiss(false);
  }
}

void ViewController::abandonPresented() {
  if (presents_) {
    for (const auto& one : presents_->stackFromTheTop()) {
      one->unlink();
      one->controller->presents_.reset();
    }
  }
  presents_.reset();
  waiting_.clear();
}

/// This one is no more, its window gone perhaps; what it presents may be held by others.
void ViewController::releasePresented() noexcept {
  try {
    const std::shared_ptr<Application> there = application_.lock();
    if (!there || there->isCleared()) {
      return;
    }
    MainQueue& mainQueue = there->mainQueue();
    if (presents_) {
      mainQueue.async([left = std::move(presents_)] { left->leaveWithoutPresenter(); });
    }
    if (!waiting_.empty()) {
      mainQueue.async(
          [left = std::move(waiting_)] { ModalPresentation::presentWaiting(left, nullptr); });
    }
    const ProgressIndicator& indicator = there->progressIndicator();
    if (indicator.owned_ && indicator.owner_.expired()) {
      mainQueue.async([weak = application_] {
        if (const auto still = weak.lock()) {
          still->progressIndicator().dismissOrphan();
        }
      });
    }
  } catch (const std::bad_alloc&) {
    return;  // what is left disappears without a callback
  }
}

}  // namespace orlix
