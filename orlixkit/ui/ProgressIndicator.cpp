// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/ProgressIndicator.h"

#include <new>
#include <utility>

#include "orlixkit/ui/ActiveWindow.h"
#include "orlixkit/ui/Application.h"

namespace orlix {

void ProgressIndicator::show(std::string status, ProgressMask mask, ProgressStyle style,
                             const std::shared_ptr<ViewController>& owner) {
  const std::shared_ptr<Application> application = application_.shared_from_this();
  state_ = State::shown;
  status_ = std::move(status);
  mask_ = mask;
  style_ = style;
  owned_ = owner != nullptr;
  owner_ = owner;
  application->progressChanged();
  runCompletions();
}

void ProgressIndicator::dismiss(Task completion) {
  const std::shared_ptr<Application> application = application_.shared_from_this();
  if (completion) {
    completions_.push_back({std::move(completion), state_ == State::shown ? fade_ + 1 : fade_});
  }
  if (state_ == State::hidden) {
    runCompletions();
    return;
  }
  if (state_ == State::fading) {
    return;
  }
  state_ = State::fading;
  const std::uint64_t fade = ++fade_;
  try {
    application->animate(nullptr, Transition::progress, [weak = std::weak_ptr(application), fade] {
      if (const auto there = weak.lock()) {
        there->progressIndicator().end(fade);
      }
    });
  } catch (const std::bad_alloc&) {
    end(fade);  // begun, so it ends, if without its animation
  }
}

void ProgressIndicator::dismissFor(const ViewController& owner, Task completion) {
  if (belongsTo(owner)) {
    dismiss(std::move(completion));
  } else if (completion) {
    application_.callOut("a completion", completion);
  }
}

bool ProgressIndicator::belongsTo(const ViewController& owner) const {
  return visible() && owned_ && owner_.lock().get() == &owner;
}

bool ProgressIndicator::isShownFor(const ViewController& owner) const {
  return state_ == State::shown && belongsTo(owner);
}

bool ProgressIndicator::blocksInput() const {
  return visible() && mask_ == ProgressMask::gradient &&
         (!owned_ || isOnScreen(application_, owner_.lock()));
}

void ProgressIndicator::end(std::uint64_t fade) {
  if (state_ != State::fading || fade_ != fade) {
    return;
  }
  const std::shared_ptr<Application> application = application_.shared_from_this();
  state_ = State::hidden;
  status_.clear();
  owned_ = false;
  owner_.reset();
  application->progressChanged();
  runCompletions();
}

void ProgressIndicator::cutFor(const ViewController& owner) {
  if (belongsTo(owner)) {
    state_ = State::fading;
    end(fade_);
  }
}

void ProgressIndicator::dismissOrphan() {
  if (owned_ && owner_.expired()) {
    dismiss();
  }
}

/// In their order, also when one of them comes back here; those of a fade under way go on waiting.
void ProgressIndicator::runCompletions() {
  while (!completions_.empty() && (state_ != State::fading || completions_.front().fade != fade_)) {
    const Task task = std::move(completions_.front().task);
    completions_.pop_front();
    application_.callOut("a completion", task);
  }
}

void ProgressIndicator::abandon() {
  state_ = State::hidden;
  status_.clear();
  owned_ = false;
  owner_.reset();
  completions_.clear();
}

}  // namespace orlix
