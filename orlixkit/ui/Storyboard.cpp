// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/Storyboard.h"

#include "orlixkit/ui/Application.h"

namespace orlix {

std::shared_ptr<ViewController> Storyboard::make(const std::string& identifier) const {
  const auto found = makers_.find(identifier);
  if (found != makers_.end()) {
    std::shared_ptr<ViewController> made = found->second();
    made->application_ = application_.weak_from_this();
    made->setIdentifier(identifier);
    if (const auto child = made->visibleChild()) {
      child->setIdentifier(identifier);
    }
    return made;
  }
  const std::string message = "The storyboard has no screen \"" + identifier + "\".";
  application_.log("OrlixKit: " + message);
  if (onMissing) {
    onMissing(message);
  }
  return nullptr;
}

}  // namespace orlix
