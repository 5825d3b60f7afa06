// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ui/AlertController.h"

namespace orlix {

/// What the "Connection problem" alert of one failed request offers.
struct ConnectionAlert {
  Task retry{};
  /// "Cancel"; empty when it only closes the alert.
  Task cancel{};
  /// The alert has gone without either of its buttons: the window went, the host removed it. Empty:
  /// the same as "Cancel".
  Task lost{};
  /// Asked before the alert is shown and before a button's task runs: false once the screen that
  /// made the request was left. Empty: as long as the flow lives.
  std::function<bool()> isWanted{};
  /// A payment is waiting for this answer. Any other alert waits until no payment is in progress.
  bool ofPayment = false;
  /// Names the kind of request. One alert at a time for each source: another failure of the same
  /// kind offers nothing new. Empty: no other failure is like this one.
  std::string source{};
};

/// The connection alerts of one flow, one after the other: two requests that fail together must
/// not put two alerts over one another, and neither may be lost.
///
/// Main thread. Each alert is shown when the progress indicator is gone.
class ConnectionAlerts : public std::enable_shared_from_this<ConnectionAlerts> {
 public:
  void add(ConnectionAlert alert);
  /// Takes away those that are no longer wanted, the shown one included.
  void dropUnwanted();
  /// Takes the shown one away and drops the others; no task of theirs runs any more.
  void close();

 private:
  void showNext();
  void present(const std::shared_ptr<ConnectionAlert>& alert);
  std::shared_ptr<AlertController> controllerFor(const std::shared_ptr<ConnectionAlert>& alert);
  /// A task that runs once the alert is over, and lets the next one come.
  Task whenOver(const std::shared_ptr<ConnectionAlert>& alert, Task ConnectionAlert::*task);

  std::deque<std::shared_ptr<ConnectionAlert>> waiting_;
  std::shared_ptr<ConnectionAlert> shown_;  ///< also while the indicator goes before it
  std::weak_ptr<AlertController> controller_;
  bool closed_ = false;
};

}  // namespace orlix
