// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "examples/shop/Script.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/TableView.h"
#include "orlixkit/ui/TextField.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix::shop {

/// What the installed host's window shows, as its user sees it. Main thread only.
///
/// The operations that look something up throw ScriptError with the reason why a user could not
/// touch it.
class ShownScreen {
 public:
  /// The screen on top, a navigation container counting as one screen; alerts over it do not count.
  /// None while the host's own screen is all there is.
  static std::shared_ptr<ViewController> screen();
  /// The screen whose outlets and actions are in reach: what a container shows, else the screen.
  static std::shared_ptr<ViewController> content();
  static std::string identifier();
  /// The topmost alert; null when there is none or it is being dismissed.
  static std::shared_ptr<AlertController> alert();
  /// Whether a transition of a screen or an alert is in progress.
  static bool isMoving();

  /// Throws when a touch on this outlet or action has no effect now, with the reason.
  static void requireTouchable(const std::string& name);
  static std::shared_ptr<View> outlet(const std::string& name);
  /// An outlet that can be seen on a screen that can be touched.
  static std::shared_ptr<View> touchableOutlet(const std::string& name);
  /// The same for a field that takes keys.
  static std::shared_ptr<TextField> touchableField(const std::string& name);
  static std::shared_ptr<TableView> touchableTable(const std::string& name);
  /// Index of the row that is meant.
  static std::size_t rowOf(const TableView& table, const std::string& name, const RowChoice& row);
  /// Index of the button with this title on the alert on top.
  static std::size_t alertButton(const AlertController& alert, const std::string& title);
};

}  // namespace orlix::shop
