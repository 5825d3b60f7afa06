// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/ModalPresentation.h"

#include <algorithm>
#include <utility>

#include "orlixkit/ui/Application.h"
#include "orlixkit/ui/PresentationController.h"

namespace orlix {

namespace {

/// The controller's application, held during a step: the observer may uninstall the host. None when
/// the host is gone already, and nothing is called back.
std::shared_ptr<Application> applicationOf(const ViewController& controller) {
  const std::shared_ptr<Application> application = controller.application();
  return application && !application->isCleared() ? application : nullptr;
}

void runCompletion(const ViewController& controller, const Task& task) {
  const std::shared_ptr<Application> application = applicationOf(controller);
  if (task && application) {
    application->callOut("a completion", task);
  }
}

}  // namespace

void ModalPresentation::begin() {
  const std::shared_ptr<ModalPresentation> self = shared_from_this();
  const std::shared_ptr<ViewController> below = presenter.lock();
  below->presents_ = self;
  controller->presentation_ = self;
  state = PresentationState::presenting;
  try {
    layOut(below);
    const std::shared_ptr<Application> application = applicationOf(*controller);
    if (application && !controller->isAlert()) {
      application->progressIndicator().dismissFor(*below);  // covered from now on
    }
    if (application && animated && state == PresentationState::presenting) {
      application->animate(controller, Transition::presentation, [self, below] {
        if (self->state == PresentationState::presenting) {
          self->arrive();
        }
      });
      return;
    }
  } catch (...) {
    if (state == PresentationState::presenting) {
      below->presents_.reset();
      unlink();
    }
    throw;
  }
  if (state == PresentationState::presenting) {
    arrive();
  }
}

void ModalPresentation::wait() {
  presenter.lock()->waiting_.push_back(shared_from_this());
  controller->presentation_ = weak_from_this();
  state = PresentationState::waiting;
}

void ModalPresentation::stopWaiting() {
  state = PresentationState::idle;
  controller->presentation_.reset();
  if (const auto below = presenter.lock()) {
    std::erase(below->waiting_, shared_from_this());
  }
}

void ModalPresentation::layOut(const std::shared_ptr<ViewController>& below) {
  controller->loadViewIfNeeded();
  if (const auto child = controller->visibleChild()) {
    child->loadViewIfNeeded();
  }
  const auto maker = controller->transitioningDelegate.lock();
  if (maker && controller->modalPresentationStyle == ModalPresentationStyle::custom) {
    presentationController = maker->presentationControllerFor(controller, below, below);
  }
  const std::shared_ptr<Application> application = applicationOf(*controller);
  const Size screen = application ? application->mainScreenSize() : Size{};
  Rect frame{0, 0, screen.width, screen.height};
  if (const auto presentation = presentationController) {
    presentation->presentationTransitionWillBegin();
    frame = presentation->frameOfPresentedViewInContainerView();
  }
  controller->view()->setFrame(frame);
  const auto child = controller->visibleChild();
  if (child) {
    child->view()->setFrame({0, 0, frame.width, frame.height});
  }
  controller->viewWillAppear();
  if (child) {
    child->viewWillAppear();
  }
}

/// Also while it is dismissed: a controller that disappears has appeared before.
void ModalPresentation::arrive() {
  const std::shared_ptr<ModalPresentation> self = shared_from_this();
  const Task completion = std::exchange(whenPresented, {});
  if (state == PresentationState::presenting) {
    state = PresentationState::presented;
  }
  controller->appear();
  const std::shared_ptr<Application> application = applicationOf(*controller);
  if (application && state != PresentationState::idle) {
    application->didPresent(controller);
  }
  runCompletion(*controller, completion);
}

ModalPresentation::Stack ModalPresentation::stackFromTheTop() {
  Stack stack;
  for (auto next = shared_from_this(); next; next = next->controller->presents_) {
    stack.insert(stack.begin(), next);
  }
  return stack;
}

void ModalPresentation::beginDismissal(Stack stack) {
  // Mark first: callbacks below must not present on a controller that is being dismissed, nor
  // dismiss it again.
  std::erase_if(stack, [](const auto& one) {
    return std::exchange(one->state, PresentationState::dismissing) ==
           PresentationState::dismissing;
  });
  for (auto one = stack.rbegin(); one != stack.rend(); ++one) {
    if ((*one)->state == PresentationState::dismissing && !(*one)->controller->appeared_) {
      (*one)->arrive();
    }
  }
  for (const auto& one : stack) {
    if (one->state == PresentationState::dismissing) {  // else a callback has ended it
      one->controller->disappear();
    }
  }
  const auto presentation = presentationController;
  const std::shared_ptr<Application> application = applicationOf(*controller);
  if (state == PresentationState::dismissing && presentation && application) {
    application->callOut("dismissalTransitionWillBegin",
                         [&presentation] { presentation->dismissalTransitionWillBegin(); });
  }
}

void ModalPresentation::endDismissal() {
  if (state != PresentationState::dismissing) {
    return;
  }
  // All the memory it needs: a dismissal that has begun to change anything comes to its end.
  const Stack stack = stackFromTheTop();
  const std::shared_ptr<ViewController> below = presenter.lock();
  if (below) {
    below->presents_.reset();
  }
  for (const auto& one : stack) {
    one->unlink();
    one->controller->presents_.reset();
  }
  finish(stack);
  if (below) {
    presentWaiting(std::exchange(below->waiting_, {}), below);
  }
}

void ModalPresentation::unlink() {
  orphans_ = std::exchange(controller->waiting_, {});
  controller->presentation_.reset();
  presenter.reset();
  presentationController.reset();
  whenPresented = {};
  state = PresentationState::idle;
}

/// Reports that all of these have gone, from the top down; then runs what waited for that.
void ModalPresentation::finish(const Stack& all) {
  for (const auto& one : all) {
    one->controller->disappear();
    for (const auto& gone : {one->controller->visibleChild(), one->controller}) {
      const auto application = gone ? applicationOf(*gone) : nullptr;
      if (application) {
        application->progressIndicator().cutFor(*gone);
      }
    }
    if (const auto application = applicationOf(*one->controller)) {
      application->didDismiss(one->controller);
    }
  }
  for (const auto& one : all) {
    const ViewController& gone = *one->controller;
    runCompletion(gone, [&one] { one->controller->hasGone(); });
    const std::vector<Task> completions = std::exchange(one->whenGone, {});
    std::for_each(completions.begin(), completions.end(),
                  [&gone](const Task& completion) { runCompletion(gone, completion); });
  }
  for (const auto& one : all) {
    presentWaiting(one->orphans_, nullptr);
  }
}

void ModalPresentation::presentWaiting(const Stack& waiting,
                                       const std::shared_ptr<ViewController>& place) {
  for (const auto& next : waiting) {
    const std::shared_ptr<Application> application = applicationOf(*next->controller);
    if (next->state != PresentationState::waiting || !application) {
      continue;  // withdrawn meanwhile
    }
    next->stopWaiting();
    bool done = false;
    const auto present = [&] {
      if (place && place->isBeingDismissed() && !next->controller->isAlert()) {
        // Nothing to present on any more, and nothing to complain of: it waited in good order.
      } else if (place) {
        place->present(next->controller, next->animated, next->whenPresented);
      } else if (next->controller->isAlert()) {
        application->showAlert(next->controller, next->animated, next->whenPresented);
      } else {
        application->log("Attempt to present " + next->controller->identifier() +
                         ", but what it waited to be presented on has gone");
      }
      done = true;
    };
    application->callOut("a presentation that has waited", present);
    if (!done) {
      next->controller->loseLater();
    }
  }
}

void ModalPresentation::stepOut() {
  const Stack gone{shared_from_this()};
  if (!controller->appeared_) {
    arrive();
  }
  const std::shared_ptr<ViewController> below = presenter.lock();
  const std::shared_ptr<ModalPresentation> above = controller->presents_;
  if (!below || !above || state == PresentationState::dismissing) {
    controller->leaveAlone();  // a callback above has changed the stack
    return;
  }
  below->presents_ = above;
  above->presenter = below;
  controller->presents_.reset();
  unlink();
  finish(gone);
}

void ModalPresentation::leaveWithoutPresenter() {
  if (presenter.expired() && state != PresentationState::idle &&
      state != PresentationState::waiting) {
    beginDismissal(stackFromTheTop());
    endDismissal();
  }
}

}  // namespace orlix
