// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "examples/shop/DeclarationWatch.h"
#include "examples/shop/EventLines.h"
#include "examples/shop/Outcomes.h"
#include "examples/shop/ScreenReporter.h"
#include "examples/shop/ScriptSource.h"
#include "examples/shop/ShopDriver.h"
#include "examples/shop/ShopOptions.h"
#include "examples/shop/UiObservers.h"
#include "examples/shop/Waiter.h"
#include "examples/shop/WalletVisit.h"
#include "examples/shop/WorkCount.h"
#include "orlixkit/host/Host.h"

namespace orlix::shop {

/// The shop application: the library on a host, the shop's own screen, and an optional script. The
/// given ports determine whether it runs headless or drawn. Main thread.
class Shop {
 public:
  /// Installs the library on these ports. `out` receives the event lines, `progress` messages for
  /// people; both must outlive the shop.
  Shop(ShopOptions options, const Ports& ports, std::ostream& out, std::ostream& progress);
  /// Ends all work.
  ~Shop();
  Shop(const Shop&) = delete;
  Shop& operator=(const Shop&) = delete;

  /// Lets `drawing` draw what is presented, and play the animations. It must outlive the shop, or
  /// be taken out again by none.
  void drawnBy(UiObserver* drawing);

  const std::shared_ptr<ViewController>& hostScreen() const { return hostScreen_; }
  const std::shared_ptr<Outcomes>& outcomes() const { return outcomes_; }
  WalletVisit& visit() { return visit_; }

  /// Runs the script to its end. Throws ScriptError with the line number and the reason.
  void run(ScriptSource& script, ShopDriver& driver);

 private:
  ShopOptions options_;
  std::shared_ptr<WorkCount> work_ = std::make_shared<WorkCount>();
  Waiter waiter_;
  EventLines events_;
  std::ostream& progress_;
  std::shared_ptr<ViewController> hostScreen_ = std::make_shared<ViewController>();
  ScreenReporter reporter_;
  WalletVisit visit_;
  DeclarationWatch declarations_;
  UiObservers observers_;
  std::shared_ptr<Outcomes> outcomes_;
};

/// Runs the shop in a window, by a script or by its user. Throws UsageError or ScriptError.
using DrawnRun =
    std::function<void(const ShopOptions& options, std::ostream& out, std::ostream& err)>;

/// Runs the shop from the command line's arguments to the exit status: 0, 1 when the script failed,
/// 2 when the arguments make no sense. `drawn` is empty in a build without the drawn shell.
int runShop(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
            const DrawnRun& drawn = {});

}  // namespace orlix::shop
