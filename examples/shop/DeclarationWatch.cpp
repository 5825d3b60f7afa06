// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/DeclarationWatch.h"

#include "examples/shop/ShownScreen.h"

namespace orlix::shop {

void DeclarationWatch::didPresent(const std::shared_ptr<ViewController>& controller) {
  const std::string found = check_.complaintAbout(controller);
  if (complaint_.empty()) {
    complaint_ = found;
  }
}

void DeclarationWatch::require() const {
  const std::shared_ptr<ViewController> shown = ShownScreen::content();
  const std::string found =
      complaint_.empty() && shown ? DeclarationCheck::undeclaredHiding(*shown) : complaint_;
  if (!found.empty()) {
    throw ScriptError(found);
  }
}

}  // namespace orlix::shop
