#pragma once

#include <string>
#include <vector>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

enum class AlertActionStyle { standard, cancel, destructive };

struct AlertAction {
  std::string title;
  AlertActionStyle style = AlertActionStyle::standard;
  Task handler;  ///< runs when the alert is gone; may be empty
};

/// A message over the screen that wants an answer.
class AlertController : public ViewController {
 public:
  AlertController(std::string title, std::string message);

  const std::string& title() const { return title_; }
  const std::string& message() const { return message_; }
  const std::vector<AlertAction>& actions() const { return actions_; }
  void addAction(AlertAction action) { actions_.push_back(std::move(action)); }

  /// The look, as far as the library fixes it.
  Font titleFont{"Bold", 17};
  Font messageFont{"Regular", 15};
  Color textColor = kWhite;

  /// A user's press on the button with this index: the alert goes, animated, then its handler runs.
  /// A second press, or one on an alert that is no longer shown, does nothing.
  void press(std::size_t index);

 private:
  std::string title_;
  std::string message_;
  std::vector<AlertAction> actions_;
  bool pressed_ = false;
};

}  // namespace orlix
