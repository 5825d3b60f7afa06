#pragma once

#include <memory>
#include <string>

#include "orlixkit/platform/ui/AlertController.h"
#include "orlixkit/platform/ui/Application.h"
#include "orlixkit/platform/ui/TextField.h"

namespace orlix {

/// A user in front of the screens: sees the top one only, and touches what can be seen and touched.
/// What cannot be done throws std::logic_error with the reason; what an action throws is logged, as
/// in the application. Main thread.
class ScreenUser {
 public:
  explicit ScreenUser(Application& application) : application_(application) {}

  /// The screen or alert that stands above all others, in the key window; a container's visible
  /// one. None without a window.
  std::shared_ptr<ViewController> topController() const;
  /// None when it is no alert.
  std::shared_ptr<AlertController> topAlert() const;

  /// An outlet of the top screen; throws when there is none of that name or kind.
  template <class T = View>
  std::shared_ptr<T> outlet(const std::string& name) const;

  /// Touches the field and types, one key at a time, behind what is there.
  void type(const std::string& field, const std::string& text);
  /// Presses the delete key so many times.
  void erase(const std::string& field, std::size_t times);
  /// Chooses all that is there and types over it, as one paste.
  void replaceAll(const std::string& field, const std::string& text);
  /// A button, a field (which begins editing) or another outlet that hears taps; otherwise the
  /// action of this name.
  void tap(const std::string& name);
  void chooseRow(const std::string& table, std::size_t row);
  /// The button inside a row.
  void tapRowButton(const std::string& table, std::size_t row);
  void pressAlert(const std::string& title);

 private:
  std::shared_ptr<View> find(const std::string& name) const;
  /// The top screen, when a touch on this outlet or action of it has an effect.
  std::shared_ptr<ViewController> reach(const std::string& name) const;
  void edit(const std::string& field, const std::function<void(TextField&)>& keys) const;

  Application& application_;
};

template <class T>
std::shared_ptr<T> ScreenUser::outlet(const std::string& name) const {
  const auto found = std::dynamic_pointer_cast<T>(find(name));
  if (!found) {
    throw std::logic_error("the outlet " + name + " is of another kind");
  }
  return found;
}

}  // namespace orlix
