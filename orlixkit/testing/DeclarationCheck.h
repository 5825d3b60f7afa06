// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <set>
#include <string>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Compares what appears on the screen with the declarations of the controllers
/// (`ViewController::declaration`), so that a user interface built from the declarations is known
/// to be complete. Main thread.
class DeclarationCheck {
 public:
  /// Describes an undeclared alert, or the undeclared segue that presented this screen; empty when
  /// it is declared. Call it from `UiObserver::didPresent`, and in `animate` before replacing
  /// screens. An alert that moves to another screen is checked against the screen that it first
  /// covered.
  std::string complaintAbout(const std::shared_ptr<ViewController>& presented);

  /// Describes the first hidden outlet without a hiding rule; empty when there is none.
  static std::string undeclaredHiding(const ViewController& screen);

 private:
  std::set<std::weak_ptr<ViewController>, std::owner_less<>> judged_;
};

}  // namespace orlix
