#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

/// Every screen of the library by its identifier, and every segue's destination by the segue's
/// name. Filled in one place, so that a part that opens a screen need not know its class.
class Storyboard {
 public:
  using Maker = std::function<std::shared_ptr<ViewController>()>;

  void add(const std::string& identifier, Maker maker) { makers_[identifier] = std::move(maker); }

  /// A new screen that carries the identifier, as does the one inside it when it is a container. An
  /// unknown identifier is logged and told to
  /// `onMissing`; none is returned.
  std::shared_ptr<ViewController> make(const std::string& identifier) const;

  /// Hears the sentence to show to the user when a screen is missing.
  std::function<void(const std::string& message)> onMissing;

 private:
  std::map<std::string, Maker> makers_;
};

}  // namespace orlix
