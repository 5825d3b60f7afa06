#include "orlixkit/platform/ui/ProgressIndicator.h"

#include "orlixkit/platform/Host.h"

namespace orlix {

void ProgressIndicator::show(std::string status, ProgressMask mask, ProgressStyle style) {
  visible_ = true;
  status_ = std::move(status);
  mask_ = mask;
  style_ = style;
  Host::current().application().progressChanged();
}

void ProgressIndicator::dismiss(Task completion) {
  if (!visible_) {
    if (completion) {
      completion();
    }
    return;
  }
  visible_ = false;
  status_.clear();
  Host::current().application().progressChanged();
  Host::current().application().animate(nullptr, Transition::progress, [completion] {
    if (completion) {
      completion();
    }
  });
}

}  // namespace orlix
