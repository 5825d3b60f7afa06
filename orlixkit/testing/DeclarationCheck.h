// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <set>
#include <string>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Holds what appears on the screen against what its controllers have declared
/// (`ViewController::declaration`). A user interface that draws the declared alerts and segues and
/// hides the declared outlets is complete as long as there is no complaint. Main thread.
class DeclarationCheck {
 public:
  /// To be called from `UiObserver::didPresent`, and from `animate` before anything is done there
  /// that replaces screens. What is wrong with this alert, or with the segue
  /// that has brought this screen; empty when both are declared. An alert that moves on to another
  /// screen is judged by the one that it first came over.
  std::string complaintAbout(const std::shared_ptr<ViewController>& presented);

  /// The first outlet that is out of sight without a rule; empty when there is none.
  static std::string undeclaredHiding(const ViewController& screen);

 private:
  std::set<std::weak_ptr<ViewController>, std::owner_less<>> judged_;
};

}  // namespace orlix
