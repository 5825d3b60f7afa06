// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

enum class AlertActionStyle { standard, cancel, destructive };

struct AlertAction {
  std::string title;
  AlertActionStyle style = AlertActionStyle::standard;
  Task handler;  ///< runs when the alert is gone; may be empty
};

/// A message over the screen that wants an answer.
///
/// One that cannot be shown yet waits: for a transition that is under way, for another alert. When
/// the controller that it waits on leaves, it is shown where `place` says.
class AlertController : public ViewController {
 public:
  AlertController(std::string title, std::string message);

  const std::string& title() const { return title_; }
  const std::string& message() const { return message_; }
  const std::vector<AlertAction>& actions() const { return actions_; }
  void addAction(AlertAction action) { actions_.push_back(std::move(action)); }

  /// The controller to show the alert on, asked each time it is to be shown. Empty, or none: what
  /// is on top of the active window.
  std::function<std::shared_ptr<ViewController>()> place;

  /// Runs, once, when the alert has gone without one of its buttons having been pressed: removed by
  /// the host or with the screen below it, or never shown for want of a window. Neither after a
  /// button nor after `withdraw`, nor at the host's shutdown.
  Task onLost;

  /// The look, as far as the library fixes it.
  Font titleFont{"Bold", 17};
  Font messageFont{"Regular", 15};
  Color textColor = kWhite;

  /// A user's press on the button with this index: the alert goes, animated, then its handler runs.
  /// A second press, or one on an alert that is no longer shown, does nothing.
  void press(std::size_t index);

  /// Takes this alert away at once, wherever it is shown or waits to be; what is on it stays. No
  /// handler runs any more, nor `onLost`, and it is not shown again.
  void withdraw();

  bool isAlert() const override { return true; }

 protected:
  bool mayBePresented() const override { return !withdrawn_; }
  void hasGone() override;

 private:
  std::string title_;
  std::string message_;
  std::vector<AlertAction> actions_;
  std::optional<Task> pressed_;  ///< its handler
  bool withdrawn_ = false;
};

}  // namespace orlix
