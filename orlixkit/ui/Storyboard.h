// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

class Application;

/// Every screen of the library by its identifier, and every segue's destination by the segue's
/// name. Filled in one place, so that a part that opens a screen need not know its class.
class Storyboard {
 public:
  using Maker = std::function<std::shared_ptr<ViewController>()>;

  /// Owned by the application, to which what it makes belongs.
  explicit Storyboard(Application& application) : application_(application) {}

  void add(const std::string& identifier, Maker maker) { makers_[identifier] = std::move(maker); }

  /// A new screen that carries the identifier, as does the one inside it when it is a container.
  /// None for an unknown identifier, which is logged and passed to `onMissing`.
  std::shared_ptr<ViewController> make(const std::string& identifier) const;

  const std::map<std::string, Maker>& makers() const { return makers_; }

  /// Alerts that do not belong to a screen: they come over whichever is shown, the host's included.
  std::span<const AlertText> alertsOfAnyScreen;
  /// Alerts over the host's own screen, while none of these is shown.
  std::span<const AlertText> alertsBeforeScreens;

  /// Hears the sentence to show to the user when a screen is missing.
  std::function<void(const std::string& message)> onMissing;

 private:
  Application& application_;
  std::map<std::string, Maker> makers_;
};

}  // namespace orlix
