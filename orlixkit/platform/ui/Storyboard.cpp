#include "orlixkit/platform/ui/Storyboard.h"

#include "orlixkit/platform/Host.h"

namespace orlix {

std::shared_ptr<ViewController> Storyboard::make(const std::string& identifier) const {
  const auto found = makers_.find(identifier);
  if (found != makers_.end()) {
    std::shared_ptr<ViewController> made = found->second();
    made->setIdentifier(identifier);
    if (const auto child = made->visibleChild()) {
      child->setIdentifier(identifier);
    }
    return made;
  }
  const std::string message = "The storyboard has no screen \"" + identifier + "\".";
  log("OrlixKit: " + message);
  if (onMissing) {
    onMissing(message);
  }
  return nullptr;
}

}  // namespace orlix
