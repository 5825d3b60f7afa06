// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "orlixkit/checkout/PurchaseStatus.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix::shop {

/// What a callback of the host's delegate carries: nothing, a transaction reference, an error code.
using OutcomeArgument = std::variant<std::monostate, std::string, int>;

/// What an observer of the shop reads: one JSON object a line, each written out at once. A secure
/// field appears as bullets, as on the screen. Main thread only.
class EventLines {
 public:
  /// `out` must outlive this object.
  explicit EventLines(std::ostream& out) : out_(out) {}

  void screen(const std::string& identifier);
  void alert(const std::string& title, const std::string& message,
             const std::vector<std::string>& buttons);
  /// None: the progress indicator is gone.
  void progress(const std::optional<std::string>& status);
  void outcome(const std::string& callback, const OutcomeArgument& argument);
  /// What the shop says to its user at the end of a visit, and what it is based on.
  void notice(const std::string& title, const std::string& detail, const PurchaseStatus& purchase);
  /// `screen` is none when no screen of the library is shown.
  void state(const ViewController* screen, const std::string& identifier);

 private:
  std::ostream& out_;
};

}  // namespace orlix::shop
