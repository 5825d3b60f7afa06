// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/testing/DeclarationCheck.h"
#include "orlixkit/ui/Application.h"

namespace orlix::shop {

/// Watches that whatever appears while a script runs is declared by its screen, so that the list of
/// the screens (`--list-screens`) is complete.
class DeclarationWatch : public UiObserver {
 public:
  void didPresent(const std::shared_ptr<ViewController>& controller) override;
  /// Throws ScriptError for the first thing that has appeared without a declaration, and for a
  /// hidden outlet of the screen that is shown.
  void require() const;

 private:
  DeclarationCheck check_;
  std::string complaint_;
};

}  // namespace orlix::shop
