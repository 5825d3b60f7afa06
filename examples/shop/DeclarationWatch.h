// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/testing/DeclarationCheck.h"
#include "orlixkit/ui/Application.h"

namespace orlix::shop {

/// Checks during a script run that every alert, segue and hidden outlet is declared by its screen,
/// so that the output of `--list-screens` is complete.
class DeclarationWatch : public UiObserver {
 public:
  void didPresent(const std::shared_ptr<ViewController>& controller) override;
  /// Throws ScriptError for the first undeclared alert or segue since the last call, and for an
  /// undeclared hidden outlet of the shown screen.
  void require() const;

 private:
  DeclarationCheck check_;
  std::string complaint_;
};

}  // namespace orlix::shop
