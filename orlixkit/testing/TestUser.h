// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/Application.h"
#include "orlixkit/ui/TextField.h"

namespace orlix {

/// Simulates a user of the screens: operates outlets of the top screen that are visible and
/// enabled. An impossible operation throws std::logic_error with the reason; exceptions of an
/// action are logged, as in the application. Main thread.
class TestUser {
 public:
  explicit TestUser(Application& application) : application_(application) {}

  /// The topmost screen or alert of the key window; the visible child of a container. Null without
  /// a window.
  std::shared_ptr<ViewController> topController() const;
  /// Null when it is not an alert.
  std::shared_ptr<AlertController> topAlert() const;

  /// An outlet of the top screen; throws when there is none of that name or kind.
  template <class T = View>
  std::shared_ptr<T> outlet(const std::string& name) const;

  /// Touches the field and types at its end, one key at a time.
  void type(const std::string& field, const std::string& text);
  /// Presses the delete key `times` times.
  void erase(const std::string& field, std::size_t times);
  /// Replaces the whole text in one edit, as a paste does.
  void replaceAll(const std::string& field, const std::string& text);
  /// Taps a button, a field (which begins editing) or another outlet with a tap handler; otherwise
  /// runs the action of this name.
  void tap(const std::string& name);
  void chooseRow(const std::string& table, std::size_t row);
  /// The button inside a row.
  void tapRowButton(const std::string& table, std::size_t row);
  void pressAlert(const std::string& title);

 private:
  std::shared_ptr<View> find(const std::string& name) const;
  /// The top screen; throws when a touch on this outlet or action has no effect.
  std::shared_ptr<ViewController> reach(const std::string& name) const;
  void edit(const std::string& field, const std::function<void(TextField&)>& keys) const;

  Application& application_;
};

template <class T>
std::shared_ptr<T> TestUser::outlet(const std::string& name) const {
  const auto found = std::dynamic_pointer_cast<T>(find(name));
  if (!found) {
    throw std::logic_error("the outlet " + name + " is of another kind");
  }
  return found;
}

}  // namespace orlix
