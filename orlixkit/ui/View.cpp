// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/View.h"

#include <algorithm>

namespace orlix {

void View::setSubviewsHidden(bool hidden) {
  for (const auto& view : subviews_) {
    view->setHidden(hidden);
  }
}

bool View::isOutOfSight() const {
  if (hidden_) {
    return true;
  }
  const auto isHidden = [](const std::shared_ptr<View>& view) { return view->hidden(); };
  if (!subviews_.empty() && std::all_of(subviews_.begin(), subviews_.end(), isHidden)) {
    return true;
  }
  for (auto above = superview(); above; above = above->superview()) {
    if (above->hidden()) {
      return true;
    }
  }
  return false;
}

void View::setBorder(double width, Color color) {
  borderWidth_ = width;
  borderColor_ = color;
  changed();
}

void View::addSubview(const std::shared_ptr<View>& view) { insertSubview(view, subviews_.size()); }

void View::insertSubview(const std::shared_ptr<View>& view, std::size_t index) {
  view->removeFromSuperview();
  const std::size_t at = std::min(index, subviews_.size());
  subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(at), view);
  view->superview_ = weak_from_this();
  changed();
}

void View::removeFromSuperview() {
  const std::shared_ptr<View> above = superview();
  superview_.reset();
  if (!above) {
    return;
  }
  // Held meanwhile: the superview may own the last reference.
  const std::shared_ptr<View> self = weak_from_this().lock();
  std::erase(above->subviews_, self);
  above->changed();
}

void Label::setHtml(std::string html) {
  html_ = true;
  setText(std::move(html));
}

void Button::setTitle(std::string title) {
  titleLabel_->setText(std::move(title));
  changed();
}

}  // namespace orlix
